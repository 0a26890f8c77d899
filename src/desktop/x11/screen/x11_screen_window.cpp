#include "desktop/x11/screen/x11_screen_window.h"

#include <xcb/composite.h>

#include <thread>

namespace tavrelon::desktop {

namespace {

/// How long an application may take to draw what was covered before.
constexpr std::chrono::milliseconds redrawTime{120};

/// What is drawn of a window that is drawn apart. Of other windows there is no such pixmap.
class WindowPixmap {
 public:
    WindowPixmap(xcb_connection_t* connection, xcb_window_t window, XDeadline deadline)
        : connection_(connection), identifier_(xcb_generate_id(connection)) {
        xcb_composite_name_window_pixmap(connection_, window, identifier_);
        const auto geometry = awaitXReply<xcb_get_geometry_reply_t>(
            connection_, xcb_get_geometry(connection_, identifier_).sequence, deadline);
        if (geometry)
            area_ = {0, 0, geometry->width, geometry->height};
    }
    WindowPixmap(const WindowPixmap&) = delete;
    WindowPixmap& operator=(const WindowPixmap&) = delete;
    ~WindowPixmap() {
        if (!area_.isEmpty())
            xcb_free_pixmap(connection_, identifier_);
    }

    xcb_pixmap_t identifier() const { return identifier_; }
    const ScreenArea& area() const { return area_; }  ///< empty where there is none

 private:
    xcb_connection_t* connection_;
    xcb_pixmap_t identifier_;
    ScreenArea area_;
};

}  // namespace

WindowPixels::WindowPixels(xcb_connection_t* connection, xcb_window_t root, ScreenGeometry& geometry,
                           ScreenPixels& pixels)
    : connection_(connection), root_(root), geometry_(geometry), pixels_(pixels) {
    const auto* extension = xcb_get_extension_data(connection_, &xcb_composite_id);
    if (!extension || !extension->present)
        return;
    const auto version = awaitXReply<xcb_composite_query_version_reply_t>(
        connection_, xcb_composite_query_version(connection_, 0, 4).sequence,
        std::chrono::steady_clock::now() + std::chrono::seconds(2));
    canUncover_ = version && (version->major_version > 0 || version->minor_version >= 2);
}

FetchOutcome WindowPixels::fetch(const WindowFrame& frame, XDeadline deadline) {
    if (canUncover_) {
        if (auto picture = fetchApart(frame, deadline))
            return *std::move(picture);
        if (geometry_.isCovered(frame, deadline)) {
            const auto apart = drawApart(frame, deadline);
            if (auto picture = fetchApart(frame, deadline))
                return *std::move(picture);
        }
    }
    return pixels_.fetch(root_, frame.area.intersected(geometry_.screen(deadline)), deadline);
}

std::optional<FetchedPicture> WindowPixels::fetchApart(const WindowFrame& frame, XDeadline deadline) {
    const WindowPixmap pixmap(connection_, frame.topLevel, deadline);
    if (pixmap.area().isEmpty())
        return std::nullopt;
    std::this_thread::sleep_until(drawnAt_);
    const ScreenArea wanted{frame.insetX, frame.insetY, frame.area.width, frame.area.height};
    auto picture = pixels_.fetch(pixmap.identifier(), wanted.intersected(pixmap.area()), deadline);
    if (!picture)
        return std::nullopt;
    picture->area.x += frame.area.x - frame.insetX;
    picture->area.y += frame.area.y - frame.insetY;
    return *std::move(picture);
}

std::shared_ptr<void> WindowPixels::drawApart(const WindowFrame& frame, XDeadline deadline) {
    if (!canUncover_ || !WindowPixmap(connection_, frame.topLevel, deadline).area().isEmpty())
        return nullptr;
    if (geometry_.isCovered(frame, deadline))
        drawnAt_ = std::chrono::steady_clock::now() + redrawTime;
    xcb_composite_redirect_window(connection_, frame.topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(connection_);
    return {connection_, [window = frame.topLevel](xcb_connection_t* connection) {
                xcb_composite_unredirect_window(connection, window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
                xcb_flush(connection);
            }};
}

}  // namespace tavrelon::desktop
