#pragma once

#include <mutex>
#include <thread>

#include "desktop/x11/connection/x11_thread_wake.h"
#include "desktop/x11/keys/x11_keyboard_devices.h"
#include "desktop/x11/keys/x11_xtest.h"

namespace tavrelon::desktop {

/// Takes the modifiers that the user holds, or has locked as with sticky keys, out of the session's keyboard, and puts
/// them back. Caps Lock and Num Lock stay. One that was to go with the next key only is not put back.
///
/// What is put back is down on the posting device too, which the user's own release does not reach; a thread therefore
/// watches the keyboards while anything is, and lets go there as the user lets go.
class X11HeldModifiers {
 public:
    /// `watch` is a connection of its own for that thread.
    X11HeldModifiers(X11XTest& xtest, std::unique_ptr<X11Connection> watch);
    X11HeldModifiers(const X11HeldModifiers&) = delete;
    X11HeldModifiers& operator=(const X11HeldModifiers&) = delete;

    /// Leaves nothing down on the posting device.
    ~X11HeldModifiers();

    /// Main thread. Leaves nothing of ours down, whatever the user holds.
    void letGo();

    /// Main thread, once at the start. Lets go of modifiers that a run which was killed left down.
    void releaseLeftOver();

    /// Main thread. A second call takes out what the user pressed since the first.
    void putAside(const X11Keyboard& keyboard);

    /// Main thread. Whether the user held any key of theirs when they were put aside.
    bool isAnyAside() const { return aside_.any(); }

    /// Main thread. Puts back what the user still holds of all that was put aside.
    void giveBack();

 private:
    void releaseRestored();
    KeySet physicallyDown(X11Connection& connection);
    void watch();
    void handle(const xcb_generic_event_t& event);
    void released(KeyCode code);

    X11XTest& xtest_;
    std::unique_ptr<X11Connection> watchConnection_;

    std::mutex mutex_;  // guards the fields up to the wake, and the order of what both threads post
    KeyboardDevices devices_;
    KeySet aside_;  ///< of the main thread
    KeySet restored_;
    ModifierMask lockedAside_ = 0;  ///< of the main thread
    bool stop_ = false;

    X11ThreadWake wake_;
    std::thread thread_;
};

}  // namespace tavrelon::desktop
