#pragma once

#include <QString>
#include <expected>
#include <functional>
#include <vector>

#include "keys/hotkey_config.h"

namespace tavrelon::platform {

/// One key event of the session, seen before the focused application gets it.
struct KeyEvent {
    enum class Type { KeyDown, FlagsChanged };

    Type type = Type::KeyDown;
    keys::VirtualKey keyCode = 0;
    keys::Modifiers modifierFlags;  ///< of FlagsChanged: the flags after the change
    QString characters;             ///< what the key types under the current layout and its dead keys; may be empty
    bool isRepeat = false;
};

enum class TapVerdict { Pass, Drop };

struct TapError {
    QString description;
};

/// Watches the keyboard of the whole session and can withhold the keys that it was told to hold. Our own posted keys
/// are not seen.
///
/// Threads: all members and the handler belong to the main thread. The adapter waits for the handler on a thread of its
/// own, for 300 ms at most: past that the key has passed, and the handler is either not called any more or its verdict
/// is ignored.
class EventTap {
 public:
    using Handler = std::function<TapVerdict(const KeyEvent&)>;

    virtual ~EventTap() = default;

    /// Starts to deliver events. An error leaves the keyboard as it was.
    virtual std::expected<void, TapError> start(Handler handler) = 0;

    /// Ends the watch and lets go of all keys; no handler call follows.
    virtual void stop() = 0;

    /// Says which keys a verdict can drop; all others are delivered too, but pass whatever the verdict. May be called
    /// before and after `start`; holds from the next key on. Hotkeys that something else holds are named in the log.
    virtual void setHotkeys(const std::vector<keys::HotkeyConfig>& hotkeys) = 0;
};

}  // namespace tavrelon::platform
