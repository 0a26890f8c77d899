#include "support/fake_keyboard.h"

#include <algorithm>

namespace tavrelon::testing {

using platform::WantedHotkey;
using Fires = WantedHotkey::Fires;

std::expected<void, platform::HotkeysError> FakeHotkeys::start(Handler handler) {
    if (startError_)
        return std::unexpected(*startError_);
    handler_ = std::move(handler);
    return {};
}

bool FakeHotkeys::wants(const keys::HotkeyConfig& hotkey) const {
    return std::ranges::find(wanted_, hotkey, &WantedHotkey::keys) != wanted_.end();
}

std::vector<keys::HotkeyConfig> FakeHotkeys::heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) {
    auto held = hotkeys;
    std::erase_if(held, [this](const auto& hotkey) { return hotkey != heldByAnother; });
    return held;
}

Taken FakeHotkeys::fire(const WantedHotkey& hotkey) {
    const auto found = std::ranges::find_if(wanted_, [&](const WantedHotkey& wanted) {
        return wanted.fires == hotkey.fires && wanted.keys.matches(hotkey.keys.keyCode, hotkey.keys.modifiers);
    });
    // Copies: the handler may declare anew or stop what calls it.
    const auto handler = handler_;
    if (!handler || found == wanted_.end())
        return Taken::ByApplication;
    const auto wanted = *found;
    handler(wanted);
    return Taken::ByUs;
}

bool FakeKeyObserver::start(Calls calls) {
    if (canObserve)
        calls_ = std::move(calls);
    return canObserve;
}

void FakeKeyObserver::type(const platform::KeyEvent& event) {
    if (const auto calls = calls_)
        calls->typed(event);
}

void FakeKeyObserver::leave() {
    const auto calls = std::exchange(calls_, std::nullopt);
    if (calls)
        calls->left();
}

Taken FakeKeyboard::press(keys::VirtualKey keyCode, keys::Modifiers flags, const QString& characters) {
    const auto taken = hotkeys.fire({{keyCode, flags}, Fires::OnPress});
    if (taken == Taken::ByApplication)
        observer.type({platform::KeyEvent::Type::KeyDown, keyCode, flags, characters, false});
    return taken;
}

Taken FakeKeyboard::chord(keys::Modifiers modifiers) {
    const auto down = hotkeys.fire({{0, modifiers}, Fires::OnModifiersDown});
    return down == Taken::ByUs ? down : hotkeys.fire({{0, modifiers}, Fires::OnModifiersReleased});
}

}  // namespace tavrelon::testing
