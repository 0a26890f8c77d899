#include "desktop/x11/keys/x11_typed_keys.h"

namespace tavrelon::desktop {

void X11TypedKeys::setKeyboard(std::shared_ptr<const X11Keyboard> keyboard) {
    keyboard_ = std::move(keyboard);
    text_.setKeyboard(*keyboard_);
}

void X11TypedKeys::track(const KeyStroke& stroke) {
    if (keyboard_->modifiersOf(stroke.code) != 0)
        down_[stroke.device].set(stroke.code, stroke.action == KeyAction::Press);
}

void X11TypedKeys::keepOnly(ModifierMask modifiers) {
    for (auto& [device, down] : down_)
        for (std::size_t code = 0; code < down.size(); ++code)
            if ((keyboard_->modifiersOf(static_cast<KeyCode>(code)) & modifiers) == 0)
                down.reset(code);
}

ModifierMask X11TypedKeys::modifiersDown() const {
    unsigned mask = 0;
    for (const auto& [device, down] : down_)
        for (std::size_t code = 0; code < down.size(); ++code)
            if (down.test(code))
                mask |= keyboard_->modifiersOf(static_cast<KeyCode>(code));
    return static_cast<ModifierMask>(mask & ~unsigned{keyboard_->locks()});
}

KeyGrab X11TypedKeys::grabOf(const DeviceKey& key) const {
    const unsigned effective =
        unsigned{key.state.effective()} | modifiersDown();  // those of the other keyboards count too
    return {key.code, static_cast<ModifierMask>(effective & ~unsigned{keyboard_->locks()})};
}

platform::KeyEvent X11TypedKeys::typed(const DeviceKey& key) {
    auto state = key.state;
    state.base |= modifiersDown();
    return {platform::KeyEvent::Type::KeyDown, keyboard_->virtualKey(key.code, text_.group(state)),
            keyboard_->flagsOf(state.effective()), text_.typed(key.code, state), key.isRepeat};
}

}  // namespace tavrelon::desktop
