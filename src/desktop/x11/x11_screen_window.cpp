#include "desktop/x11/x11_screen_window.h"

#include <xcb/composite.h>

#include <thread>

namespace tavrelon::desktop {

using platform::CaptureError;
using platform::Image;

namespace {

/// How long an application may take to draw what was covered before.
constexpr std::chrono::milliseconds redrawTime{120};

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

std::expected<Image, CaptureError> WindowPixels::fetch(const WindowFrame& frame, XDeadline deadline) {
    if (canUncover_) {
        if (auto image = fetchNamed(frame, deadline))
            return *std::move(image);
        if (geometry_.isCovered(frame, deadline))
            if (auto image = fetchUncovered(frame, deadline))
                return *std::move(image);
    }
    return pixels_.fetch(root_, frame.area.intersected(geometry_.screen(deadline)), deadline);
}

std::optional<Image> WindowPixels::fetchNamed(const WindowFrame& frame, XDeadline deadline) {
    const auto pixmap = xcb_generate_id(connection_);
    xcb_composite_name_window_pixmap(connection_, frame.topLevel, pixmap);
    // Of a window that is not drawn apart there is no such pixmap.
    const auto geometry =
        awaitXReply<xcb_get_geometry_reply_t>(connection_, xcb_get_geometry(connection_, pixmap).sequence, deadline);
    if (!geometry)
        return std::nullopt;
    const ScreenArea wanted{frame.insetX, frame.insetY, frame.area.width, frame.area.height};
    auto image = pixels_.fetch(pixmap, wanted.intersected({0, 0, geometry->width, geometry->height}), deadline);
    xcb_free_pixmap(connection_, pixmap);
    return image ? std::optional(*std::move(image)) : std::nullopt;
}

std::optional<Image> WindowPixels::fetchUncovered(const WindowFrame& frame, XDeadline deadline) {
    xcb_composite_redirect_window(connection_, frame.topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(connection_);
    std::this_thread::sleep_for(redrawTime);
    auto image = fetchNamed(frame, deadline);
    xcb_composite_unredirect_window(connection_, frame.topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(connection_);
    return image;
}

}  // namespace tavrelon::desktop
