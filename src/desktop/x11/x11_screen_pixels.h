#pragma once

#include <expected>

#include "desktop/x11/x11_screen_geometry.h"
#include "platform/screen_capture.h"

namespace tavrelon::desktop {

/// Fetches what is drawn on windows and pixmaps: through memory shared with the server where both are on this machine,
/// else over the connection.
class ScreenPixels {
 public:
    explicit ScreenPixels(xcb_connection_t* connection);
    ScreenPixels(const ScreenPixels&) = delete;
    ScreenPixels& operator=(const ScreenPixels&) = delete;
    ~ScreenPixels();

    /// The area must lie inside of the drawable, in whose coordinates it is; a window must be on the screen.
    std::expected<platform::Image, platform::CaptureError> fetch(xcb_drawable_t drawable, const ScreenArea& area,
                                                                 XDeadline deadline);

 private:
    bool share(std::size_t bytes, XDeadline deadline);
    void endSharing();
    std::optional<QByteArray> fetchShared(xcb_drawable_t drawable, const ScreenArea& area, std::size_t bytes,
                                          XDeadline deadline);

    xcb_connection_t* connection_;
    bool canShare_ = false;
    std::uint32_t segment_ = XCB_NONE;
    void* memory_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace tavrelon::desktop
