#pragma once

#include <expected>
#include <memory>

#include "desktop/x11/screen/x11_screen_geometry.h"
#include "platform/screen_capture.h"

namespace tavrelon::desktop {

/// A picture that can still be drawn on.
struct FetchedPicture {
    ScreenArea area;                        ///< what it shows
    std::shared_ptr<unsigned char> pixels;  ///< as those of `platform::Image`

    platform::Image image() const;
};
using FetchOutcome = std::expected<FetchedPicture, platform::CaptureError>;

/// Fetches what is drawn on windows and pixmaps: through memory shared with the server where both are on this machine,
/// else over the connection. The memory is that of the picture, and is used again once nobody has the picture any more.
class ScreenPixels {
 public:
    explicit ScreenPixels(xcb_connection_t* connection);
    ScreenPixels(const ScreenPixels&) = delete;
    ScreenPixels& operator=(const ScreenPixels&) = delete;
    ~ScreenPixels();

    /// The area must lie inside of the drawable, in whose coordinates it is, as is that of the picture; a window must
    /// be on the screen.
    FetchOutcome fetch(xcb_drawable_t drawable, const ScreenArea& area, XDeadline deadline);

    bool sharesMemory() const { return segment_ != XCB_NONE; }
    void endSharing();

 private:
    bool share(std::size_t bytes, XDeadline deadline);
    /// As the server gives it.
    struct Fetched {
        std::shared_ptr<unsigned char> pixels;
        std::size_t size = 0;
        std::uint8_t depth = 0;
    };
    std::optional<Fetched> fetchShared(xcb_drawable_t drawable, const ScreenArea& area, XDeadline deadline);
    std::optional<Fetched> fetchSent(xcb_drawable_t drawable, const ScreenArea& area, XDeadline deadline);

    xcb_connection_t* connection_;
    bool canShare_ = false;
    std::uint32_t segment_ = XCB_NONE;
    std::shared_ptr<unsigned char> memory_;
    std::size_t size_ = 0;
};

}  // namespace tavrelon::desktop
