#pragma once

#include "desktop/x11/keys/x11_grab_set.h"
#include "desktop/x11/keys/x11_keyboard_devices.h"

namespace tavrelon::desktop {

/// Which of these keys another client, such as the window manager, holds above all windows.
GrabSet heldElsewhere(X11Connection& connection, const GrabSet& grabs);

/// Keeps a set of keys grabbed on the window that has the focus, and follows the focus. A grab there leaves all
/// grabs of the window manager, which stand above it, in force, and tells the window of no change of the focus, on
/// which input methods would commit what is half composed. A grab freezes nothing. One thread.
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

    const GrabSet& grabs() const { return grabs_; }

    /// The keys that the server did not give us on the window.
    const GrabSet& refused() const { return refused_; }

    /// Gives the keyboard back right after a press that a grab took: only the press is ours, and what follows, the
    /// releases of modifiers above all, is the application's.
    void letGo() const;

    /// The window with the focus; the root where none has it.
    xcb_window_t window() const { return window_; }

    /// The client window in front, as the window manager says, or the window with the focus where none says anything.
    /// None while nothing is in front.
    xcb_window_t activeWindow() const;

    /// Whether two windows were made by one client.
    bool areOfOneClient(xcb_window_t a, xcb_window_t b) const;

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
