#include "desktop/x11/screen/x11_screen_cursor.h"

#include <xcb/xfixes.h>

#include <algorithm>

namespace tavrelon::desktop {

namespace {

/// Lays a colour over another one; all four bytes are treated alike.
void blend(unsigned char* below, std::uint32_t over) {
    const std::uint32_t left = 255 - (over >> 24);
    for (int shift = 0; shift < 24; shift += 8, ++below) {
        const auto value = ((over >> shift) & 0xFF) + (*below * left + 127) / 255;
        *below = static_cast<unsigned char>(std::min<std::uint32_t>(value, 255));
    }
}

}  // namespace

std::optional<CursorPicture> cursorNow(xcb_connection_t* connection, XDeadline deadline) {
    const auto reply = awaitXReply<xcb_xfixes_get_cursor_image_reply_t>(
        connection, xcb_xfixes_get_cursor_image(connection).sequence, deadline);
    if (!reply)
        return std::nullopt;
    const auto* first = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
    const auto count = xcb_xfixes_get_cursor_image_cursor_image_length(reply.get());
    if (count != reply->width * reply->height)
        return std::nullopt;
    return CursorPicture{.area = {reply->x - reply->xhot, reply->y - reply->yhot, reply->width, reply->height},
                         .pixels = {first, first + count}};
}

void drawCursor(const FetchedPicture& picture, const CursorPicture& cursor) {
    const auto shown = cursor.area.intersected(picture.area);
    if (shown.isEmpty())
        return;
    for (int y = shown.y; y < shown.y + shown.height; ++y)
        for (int x = shown.x; x < shown.x + shown.width; ++x) {
            const auto from =
                static_cast<std::size_t>(y - cursor.area.y) * static_cast<std::size_t>(cursor.area.width) +
                static_cast<std::size_t>(x - cursor.area.x);
            const auto to =
                static_cast<std::size_t>(y - picture.area.y) * static_cast<std::size_t>(picture.area.width) +
                static_cast<std::size_t>(x - picture.area.x);
            blend(picture.pixels.get() + 4 * to, cursor.pixels[from]);
        }
}

}  // namespace tavrelon::desktop
