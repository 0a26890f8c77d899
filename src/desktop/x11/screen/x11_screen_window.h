#pragma once

#include "desktop/x11/screen/x11_screen_pixels.h"

namespace tavrelon::desktop {

/// Fetches what a window shows, whatever lies over it. Where a compositing manager runs, the window is drawn apart
/// anyway; else it is for the moment of the picture, if something covers it, or before, if asked. Without the Composite
/// extension what covers it is in the picture.
class WindowPixels {
 public:
    /// The referents must outlive this object.
    WindowPixels(xcb_connection_t* connection, xcb_window_t root, ScreenGeometry& geometry, ScreenPixels& pixels);

    /// Whether windows can be taken by themselves.
    bool canUncover() const { return canUncover_; }

    FetchOutcome fetch(const WindowFrame& frame, XDeadline deadline);

    /// Has the window drawn apart for as long as the result lives, if it is not already.
    std::shared_ptr<void> drawApart(const WindowFrame& frame, XDeadline deadline);

 private:
    std::optional<FetchedPicture> fetchApart(const WindowFrame& frame, XDeadline deadline);

    xcb_connection_t* connection_;
    xcb_window_t root_;
    ScreenGeometry& geometry_;
    ScreenPixels& pixels_;
    bool canUncover_ = false;
    XDeadline drawnAt_;  ///< when what was covered is there
};

}  // namespace tavrelon::desktop
