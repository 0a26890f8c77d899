#include "desktop/x11/x11_event_tap_observer.h"

#include <algorithm>

namespace tavrelon::desktop {

using platform::KeyEvent;

void X11KeyObserver::setKeyboard(std::shared_ptr<const X11Keyboard> keyboard) {
    keyboard_ = std::move(keyboard);
    text_.setKeyboard(*keyboard_);
    grabs_ = grabsFor(hotkeys_, *keyboard_);
}

void X11KeyObserver::setHotkeys(std::vector<keys::HotkeyConfig> hotkeys) {
    hotkeys_ = std::move(hotkeys);
    grabs_ = grabsFor(hotkeys_, *keyboard_);
}

std::optional<X11KeyObserver::Observation> X11KeyObserver::observe(const DeviceKey& key) {
    const bool isModifier = keyboard_->modifiersOf(key.code) != 0;
    trackModifiers(key);
    if (isModifier) {
        const bool hasFlag = !keyboard_->flagsHeldBy(key.code).isEmpty();
        return hasFlag && !key.isRepeat ? std::optional(modifierChanged(key)) : std::nullopt;
    }
    return key.action == KeyAction::Press ? std::optional(pressed(key)) : std::nullopt;
}

void X11KeyObserver::trackModifiers(const DeviceKey& key) {
    auto& down = down_[key.device];
    // A release may have been missed, while the keyboard was unplugged or another console was in front.
    for (std::size_t code = 0; code < down.size(); ++code)
        if (down.test(code) && (keyboard_->modifiersOf(static_cast<KeyCode>(code)) & key.state.base) == 0)
            down.reset(code);
    if (keyboard_->modifiersOf(key.code) != 0)
        down.set(key.code, key.action == KeyAction::Press);
}

ModifierMask X11KeyObserver::modifiersDown() const {
    unsigned mask = 0;
    for (const auto& [device, down] : down_)
        for (std::size_t code = 0; code < down.size(); ++code)
            if (down.test(code))
                mask |= keyboard_->modifiersOf(static_cast<KeyCode>(code));
    return static_cast<ModifierMask>(mask & ~unsigned{keyboard_->locks()});
}

X11KeyObserver::Observation X11KeyObserver::modifierChanged(const DeviceKey& key) {
    const auto mask = static_cast<ModifierMask>(modifiersDown() | key.state.latched | key.state.locked);
    return {{KeyEvent::Type::FlagsChanged,
             keyboard_->virtualKey(key.code, text_.group(key.state)),
             keyboard_->flagsOf(mask),
             {},
             false},
            false};
}

X11KeyObserver::Observation X11KeyObserver::pressed(const DeviceKey& key) {
    auto state = key.state;
    state.base |= modifiersDown();  // those of the other keyboards count too
    const KeyGrab grab{key.code, static_cast<ModifierMask>(state.effective() & ~keyboard_->locks())};
    KeyEvent event{KeyEvent::Type::KeyDown,
                   keyboard_->virtualKey(key.code, text_.group(state)),
                   keyboard_->flagsOf(state.effective()),
                   {},
                   key.isRepeat};
    const bool isHotkey = grabs_.contains(grab);
    event.characters = isHotkey ? text_.typedAlone(key.code, state) : text_.typed(key.code, state);
    // Our flags do not tell AltGr: a key that it turns into another letter is not the hotkey of the plain key.
    if (!isHotkey && std::ranges::any_of(hotkeys_, [&](const auto& hotkey) {
            return hotkey.matches(event.keyCode, event.modifierFlags);
        }))
        event.keyCode = unnamedKey;
    return {std::move(event), isHotkey};
}

}  // namespace tavrelon::desktop
