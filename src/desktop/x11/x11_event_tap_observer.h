#pragma once

#include <map>
#include <optional>
#include <vector>

#include "desktop/x11/x11_grab_set.h"
#include "desktop/x11/x11_key_posts.h"
#include "desktop/x11/x11_key_text.h"
#include "desktop/x11/x11_keyboard_devices.h"
#include "platform/event_tap.h"

namespace tavrelon::desktop {

/// One key going down or up on one keyboard.
struct DeviceKey {
    DeviceId device = 0;
    KeyCode code = 0;
    KeyAction action = KeyAction::Press;
    KeyState state;  ///< of this device alone, before the key changed it
    bool isRepeat = false;
};

/// Makes key events of what the keyboards report, and knows which modifiers are down. One thread.
class X11KeyObserver {
 public:
    struct Observation {
        platform::KeyEvent event;
        bool isHotkey = false;  ///< the key is one that we hold
    };

    void setKeyboard(std::shared_ptr<const X11Keyboard> keyboard);
    void setHotkeys(std::vector<keys::HotkeyConfig> hotkeys);

    /// Says what is down on a keyboard that was not watched before.
    void setKeysDown(DeviceId device, const KeySet& keys) { down_[device] = keys; }

    /// The event of a key; nothing for releases of ordinary keys and for keys that carry no news.
    std::optional<Observation> observe(const DeviceKey& key);

    const GrabSet& grabs() const { return grabs_; }
    const X11Keyboard& keyboard() const { return *keyboard_; }
    const std::vector<keys::HotkeyConfig>& hotkeys() const { return hotkeys_; }

 private:
    void trackModifiers(const DeviceKey& key);
    ModifierMask modifiersDown() const;
    Observation modifierChanged(const DeviceKey& key);
    Observation pressed(const DeviceKey& key);

    std::shared_ptr<const X11Keyboard> keyboard_;
    std::vector<keys::HotkeyConfig> hotkeys_;
    GrabSet grabs_;
    X11KeyText text_;
    std::map<DeviceId, KeySet> down_;  ///< modifier keys only
};

}  // namespace tavrelon::desktop
