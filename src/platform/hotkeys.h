#pragma once

#include <QString>
#include <expected>
#include <functional>
#include <vector>

#include "keys/hotkey_config.h"

namespace tavrelon::platform {

/// A hotkey that is to be ours from now on.
struct WantedHotkey {
    enum class Fires {
        OnPress,              ///< a key with exactly these modifiers goes down
        OnModifiersDown,      ///< the modifiers alone, as soon as all of them are down
        OnModifiersReleased,  ///< the modifiers alone, struck like a key: nothing else between, and soon let go
    };

    keys::HotkeyConfig keys;  ///< of modifiers alone: `keyCode` says nothing
    Fires fires = Fires::OnPress;

    bool operator==(const WantedHotkey&) const = default;
};

struct HotkeysError {
    QString description;
};

/// Hotkeys of the whole session. Which keys are wanted is said before they are pressed; no key ever waits for a
/// decision, and all keys that are not wanted go their way as if we were not there.
///
/// A press of a wanted key is told once, however long it is held, and never reaches an application; the release of the
/// key may. Modifiers alone always reach it. Nothing is told while another program holds the keyboard (a screen locker,
/// a password prompt, a virtual machine). A hotkey without modifiers counts only where the layout in force types the
/// symbol of that key by it.
///
/// Threads: all members and the handler belong to the main thread.
class Hotkeys {
 public:
    using Handler = std::function<void(const WantedHotkey&)>;

    virtual ~Hotkeys() = default;

    /// Starts to tell presses. An error leaves the keyboard as it was.
    virtual std::expected<void, HotkeysError> start(Handler handler) = 0;

    /// Lets go of all keys; no handler call follows. What was declared is kept for the next start.
    virtual void stop() = 0;

    /// Says which hotkeys are wanted, in place of those before; in force on return, but for a desktop that does not
    /// answer for a quarter of a second. May be called before `start` and from within the handler.
    virtual void declare(const std::vector<WantedHotkey>& wanted) = 0;

    /// Which of these combinations a program or the desktop holds, so that a press would not come to us. None where
    /// that cannot be told.
    virtual std::vector<keys::HotkeyConfig> heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) = 0;
};

}  // namespace tavrelon::platform
