#pragma once

#include <functional>

#include "platform/key_event.h"

namespace tavrelon::platform {

/// Tells what the user types into the window in front while an input is open. The keys themselves reach the application
/// as always. A session may be unable to; then only the field itself tells what was typed.
///
/// Secrets: nothing is told that is typed into another window, while another program holds the keyboard, or that we
/// posted ourselves. Hotkeys that were declared and modifiers are no typed keys.
///
/// Threads: all members and the calls belong to the main thread.
class KeyObserver {
 public:
    struct Calls {
        std::function<void(const KeyEvent&)> typed;
        /// The keyboard went to another application or to a program that holds it; nothing is told from here on.
        std::function<void()> left;
    };

    virtual ~KeyObserver() = default;

    /// Begins with the key after the hotkey that is being handled, or else with the next one. False where this session
    /// cannot tell keys. Ends an earlier observation.
    virtual bool start(Calls calls) = 0;

    /// No call follows, also from within one.
    virtual void stop() = 0;
};

}  // namespace tavrelon::platform
