#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/x11/keys/x11_grab_set.h"
#include "platform/hotkeys.h"

namespace tavrelon::desktop {

/// Which keys to grab for the hotkeys that are pressed like keys, and what a grabbed press is. One thread.
class X11HotkeyGrabs {
 public:
    /// The map and the layout in force.
    void setKeyboard(std::shared_ptr<const X11Keyboard> keyboard, unsigned group);
    void setGroup(unsigned group) { group_ = group; }
    void declare(std::vector<platform::WantedHotkey> wanted);

    /// All that is to be grabbed now. The keys of a hotkey that is still held down stay in it with fewer modifiers
    /// too, or their repeats would be typed once the user has let go of the modifiers or the hotkey is not wanted any
    /// more.
    GrabSet grabs() const;

    /// The hotkey of a grabbed press; nothing for repeats and for what was down before. Times are the server's.
    std::optional<platform::WantedHotkey> pressed(const KeyGrab& key, std::uint32_t time, bool isRepeat);

    /// A key went up. True if `grabs` is another now. While a program keeps the keyboard frozen, as some window
    /// managers do for a moment with every Super, this is told before the press.
    bool released(KeyCode code, std::uint32_t time);
    bool holdsAny() const { return !held_.empty(); }
    bool releasedAll() { return !std::exchange(held_, {}).empty(); }

    const std::vector<platform::WantedHotkey>& wanted() const { return wanted_; }
    const X11Keyboard& keyboard() const { return *keyboard_; }
    unsigned group() const { return group_; }
    GrabSet grabsOf(const platform::WantedHotkey& hotkey) const;

 private:
    std::shared_ptr<const X11Keyboard> keyboard_;
    unsigned group_ = 0;
    std::vector<platform::WantedHotkey> wanted_;
    std::map<KeyCode, ModifierMask> held_;
    std::map<KeyCode, std::uint32_t> released_;  ///< when each key went up last
};

}  // namespace tavrelon::desktop
