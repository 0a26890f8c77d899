#include "desktop/x11/keys/x11_native_keys.h"

namespace tavrelon::desktop {

using platform::KeyEvent;

std::expected<std::unique_ptr<X11NativeKeys>, QString> X11NativeKeys::create() {
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(connection.error());
    return std::unique_ptr<X11NativeKeys>(new X11NativeKeys(std::move(*connection)));
}

void X11NativeKeys::refresh() {
    // The server tells every client of a changed keyboard; nobody else reads here.
    while (const XPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
    }
    if (auto keyboard = X11Keyboard::fromServer(*connection_))
        keyboard_ = std::move(keyboard);
}

std::optional<KeyEvent> X11NativeKeys::eventOf(KeyCode code, unsigned state, KeyAction action, bool isRepeat) const {
    if (!keyboard_)
        return std::nullopt;
    constexpr unsigned groupShift = 13;
    constexpr unsigned groupMask = 3;
    const auto key = keyboard_->virtualKey(code, (state >> groupShift) & groupMask);
    const auto before = keyboard_->flagsOf(static_cast<ModifierMask>(state & 0xFF));
    if (keyboard_->modifiersOf(code) == 0) {
        if (action == KeyAction::Release || key == unnamedKey)
            return std::nullopt;
        return KeyEvent{KeyEvent::Type::KeyDown, key, before, {}, isRepeat};
    }
    const auto held = keyboard_->flagsHeldBy(code);
    if (held.isEmpty() || isRepeat)
        return std::nullopt;
    const auto after = action == KeyAction::Press ? before | held : keys::Modifiers{before.raw & ~held.raw};
    return KeyEvent{KeyEvent::Type::FlagsChanged, key, after, {}, false};
}

}  // namespace tavrelon::desktop
