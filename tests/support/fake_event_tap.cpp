#include "support/fake_event_tap.h"

#include <algorithm>

namespace tavrelon::testing {

using platform::KeyEvent;
using platform::TapVerdict;

std::expected<void, platform::TapError> FakeEventTap::start(Handler handler) {
    if (startError_)
        return std::unexpected(*startError_);
    handler_ = std::move(handler);
    return {};
}

void FakeEventTap::stop() {
    handler_ = nullptr;
}

TapVerdict FakeEventTap::press(keys::VirtualKey keyCode, keys::Modifiers flags, const QString& characters) {
    return deliver({KeyEvent::Type::KeyDown, keyCode, flags, characters, false});
}

TapVerdict FakeEventTap::repeat(keys::VirtualKey keyCode, keys::Modifiers flags, const QString& characters) {
    return deliver({KeyEvent::Type::KeyDown, keyCode, flags, characters, true});
}

TapVerdict FakeEventTap::flagsChanged(keys::Modifiers flags) {
    return deliver({KeyEvent::Type::FlagsChanged, 0, flags, {}, false});
}

TapVerdict FakeEventTap::deliver(const KeyEvent& event) {
    // A copy: the handler may stop the tap that calls it.
    const auto handler = handler_;
    const auto verdict = handler ? handler(event) : TapVerdict::Pass;
    if (verdict == TapVerdict::Pass || !canDrop(event))
        received_.push_back(event);
    return verdict;
}

bool FakeEventTap::canDrop(const KeyEvent& event) const {
    return event.type == KeyEvent::Type::KeyDown && std::ranges::any_of(hotkeys_, [&](const auto& hotkey) {
               return hotkey.matches(event.keyCode, event.modifierFlags);
           });
}

}  // namespace tavrelon::testing
