#pragma once

#include "desktop/x11/x11_grab_set.h"
#include "desktop/x11/x11_keyboard_devices.h"

namespace tavrelon::desktop {

/// Keeps a set of keys grabbed on the window that has the focus, and follows the focus. A grab there leaves all
/// grabs of the window manager, which stand above it, in force. One thread.
class X11GrabWindow {
 public:
    X11GrabWindow(X11Connection& connection, DeviceId masterKeyboard);
    X11GrabWindow(const X11GrabWindow&) = delete;
    X11GrabWindow& operator=(const X11GrabWindow&) = delete;
    ~X11GrabWindow();

    /// Changes the set, new keys first. `numLock` is the modifier of Num Lock in the map in force.
    void setGrabs(GrabSet grabs, ModifierMask numLock);

    /// Whether the focus may have moved; then call `followFocus`.
    bool concerns(const xcb_generic_event_t& event) const;

    /// Moves all grabs to the window that has the focus now, to the new one before they leave the old one.
    void followFocus();

    /// The keys that the server did not give us on the window.
    const GrabSet& refused() const { return refused_; }

    /// Which of these keys another client, such as the window manager, holds above all windows.
    GrabSet heldElsewhere(const GrabSet& grabs) const;

 private:
    xcb_window_t focus() const;
    void watch(xcb_window_t window) const;
    GrabSet grab(xcb_window_t window, const GrabSet& grabs) const;
    void release(xcb_window_t window, const GrabSet& combinations) const;

    X11Connection& connection_;
    DeviceId master_;
    xcb_atom_t activeWindow_ = XCB_ATOM_NONE;
    xcb_window_t window_ = XCB_NONE;
    GrabSet grabs_;
    GrabSet refused_;
    ModifierMask numLock_ = 0;
};

}  // namespace tavrelon::desktop
