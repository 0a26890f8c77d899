#include "ui/settings/hotkey_recording.h"

#include <bit>

namespace tavrelon::ui {

using keys::HotkeyConfig;
using platform::RawKey;

HotkeyRecording::Outcome HotkeyRecording::take(const RawKey& key) {
    const auto modifiers = key.modifierFlags & keys::relevantModifierMask;
    switch (key.type) {
        case RawKey::Type::Pressed:
            if (key.keyCode == keys::keyEscape && modifiers.isEmpty())
                return Outcome::Left;
            press(key.keyCode, modifiers);
            break;
        case RawKey::Type::Released:
            if (heldKey_ == key.keyCode)
                heldKey_.reset();
            break;
        case RawKey::Type::ModifiersChanged:
            if (content_ == Content::KeyOrModifiers && !hasKey_ && !modifiers.isEmpty() && isLarger(modifiers))
                hotkey_ = HotkeyConfig{0, modifiers};
            break;
    }
    if (heldKey_ || !modifiers.isEmpty())
        return Outcome::GoesOn;
    if (hotkey_)
        return Outcome::Taken;
    hasKey_ = false;
    return Outcome::GoesOn;
}

void HotkeyRecording::press(keys::VirtualKey key, keys::Modifiers modifiers) {
    heldKey_ = key;
    wasRefused_ = content_ == Content::KeyOrModifiers && key == keys::keyA;
    if (wasRefused_)
        hotkey_.reset();
    else if (!hasKey_ || isLarger(modifiers))
        hotkey_ = HotkeyConfig{key, modifiers};
    hasKey_ = true;
}

bool HotkeyRecording::isLarger(keys::Modifiers modifiers) const {
    return !hotkey_ || std::popcount(modifiers.raw) >= std::popcount(hotkey_->modifiers.raw);
}

}  // namespace tavrelon::ui
