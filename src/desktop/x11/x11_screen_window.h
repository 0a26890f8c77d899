#pragma once

#include "desktop/x11/x11_screen_pixels.h"

namespace tavrelon::desktop {

/// Fetches what a window shows, whatever lies over it. Where a compositing manager runs, the window is drawn apart
/// anyway; else it is for the moment of the picture, if something covers it. Without the Composite extension what
/// covers it is in the picture.
class WindowPixels {
 public:
    /// The referents must outlive this object.
    WindowPixels(xcb_connection_t* connection, xcb_window_t root, ScreenGeometry& geometry, ScreenPixels& pixels);

    /// Whether windows can be taken by themselves.
    bool canUncover() const { return canUncover_; }

    std::expected<platform::Image, platform::CaptureError> fetch(const WindowFrame& frame, XDeadline deadline);

 private:
    std::optional<platform::Image> fetchNamed(const WindowFrame& frame, XDeadline deadline);
    std::optional<platform::Image> fetchUncovered(const WindowFrame& frame, XDeadline deadline);

    xcb_connection_t* connection_;
    xcb_window_t root_;
    ScreenGeometry& geometry_;
    ScreenPixels& pixels_;
    bool canUncover_ = false;
};

}  // namespace tavrelon::desktop
