#pragma once

#include <map>

#include "desktop/x11/keys/x11_grab_set.h"
#include "desktop/x11/keys/x11_key_text.h"
#include "desktop/x11/keys/x11_ungrabbed_keys.h"
#include "platform/key_event.h"

namespace tavrelon::desktop {

/// One key going down or up on one keyboard, as that keyboard tells it.
struct DeviceKey {
    DeviceId device = 0;
    KeyCode code = 0;
    KeyAction action = KeyAction::Press;
    KeyState state;  ///< of this device alone, before the key changed it
    bool isRepeat = false;
};

/// Makes key events of what the keyboards report, and knows which modifiers are down. One thread.
class X11TypedKeys {
 public:
    void setKeyboard(std::shared_ptr<const X11Keyboard> keyboard);

    /// Says what is down on a keyboard that was not watched before.
    void setKeysDown(DeviceId device, const KeySet& keys) { down_[device] = keys; }

    /// Takes every stroke, in order.
    void track(const KeyStroke& stroke);

    /// A release may have been missed, while somebody held the keyboard or another console was in front: no modifier
    /// is down but these.
    void keepOnly(ModifierMask down);

    /// Whether the key holds one of the four flags while it is down.
    bool isModifier(KeyCode code) const { return !keyboard_->flagsHeldBy(code).isEmpty(); }

    /// The flags that the user's fingers hold on all keyboards together.
    keys::Modifiers flagsDown() const { return keyboard_->flagsOf(modifiersDown()); }

    /// The key with its modifiers, as it would be grabbed.
    KeyGrab grabOf(const DeviceKey& key) const;

    /// The event of a press that an application gets; accented letters are put together.
    platform::KeyEvent typed(const DeviceKey& key);

    /// Gives up a half-typed accented letter.
    void forgetDeadKey() { text_.reset(); }

 private:
    ModifierMask modifiersDown() const;

    std::shared_ptr<const X11Keyboard> keyboard_;
    X11KeyText text_;
    std::map<DeviceId, KeySet> down_;  ///< modifier keys only
};

}  // namespace tavrelon::desktop
