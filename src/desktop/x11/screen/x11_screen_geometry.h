#pragma once

#include <vector>

#include "desktop/x11/connection/x11_reply_wait.h"

namespace tavrelon::desktop {

/// A rectangle of the root window, in pixels.
struct ScreenArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const ScreenArea&) const = default;

    bool isEmpty() const { return width <= 0 || height <= 0; }
    ScreenArea intersected(const ScreenArea& other) const;
};

/// A client's window together with what its window manager put around it.
struct WindowFrame {
    xcb_window_t topLevel = XCB_NONE;  ///< the child of the root that holds it
    ScreenArea area;                   ///< without borders and the shadow that the client draws itself
    int insetX = 0;                    ///< where `area` begins inside of `topLevel`
    int insetY = 0;
    bool isViewable = false;
    bool operator==(const WindowFrame&) const = default;
};

/// Where windows and monitors are. The questions of one call are all under the same deadline.
class ScreenGeometry {
 public:
    ScreenGeometry(xcb_connection_t* connection, xcb_window_t root);

    /// The monitors, the primary one first; the whole screen where there are none.
    std::vector<ScreenArea> monitors(XDeadline deadline);

    /// The whole screen; empty where the server did not answer in time.
    ScreenArea screen(XDeadline deadline);

    /// Absent where the window is gone or the server did not answer in time.
    std::optional<WindowFrame> frameOf(xcb_window_t client, XDeadline deadline);

    /// Whether another window lies over a part of the frame, or a part is off the screen.
    bool isCovered(const WindowFrame& frame, XDeadline deadline);

 private:
    struct Placed {
        ScreenArea area;  ///< the border included
        int border = 0;
        bool isViewable = false;
    };

    struct PlaceQuestion {
        unsigned int geometry = 0;
        unsigned int attributes = 0;
    };

    PlaceQuestion askPlace(xcb_window_t window);
    std::optional<Placed> takePlace(PlaceQuestion asked, XDeadline deadline);
    std::optional<Placed> placeOf(xcb_window_t window, XDeadline deadline);
    std::vector<xcb_window_t> topLevels(XDeadline deadline);

    xcb_connection_t* connection_;
    xcb_window_t root_;
    xcb_atom_t ownShadow_ = XCB_NONE;
    bool hasMonitors_ = false;
};

}  // namespace tavrelon::desktop
