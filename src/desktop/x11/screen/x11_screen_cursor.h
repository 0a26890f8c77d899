#pragma once

#include <vector>

#include "desktop/x11/screen/x11_screen_pixels.h"

namespace tavrelon::desktop {

/// The pointer's picture. Its pixels are 0xAARRGGBB, with the colours multiplied by the alpha.
struct CursorPicture {
    ScreenArea area;
    std::vector<std::uint32_t> pixels;
};

/// The pointer as it is shown now; absent where the server does not tell.
std::optional<CursorPicture> cursorNow(xcb_connection_t* connection, XDeadline deadline);

/// Draws the pointer on a picture whose area is one of the screen.
void drawCursor(const FetchedPicture& picture, const CursorPicture& cursor);

}  // namespace tavrelon::desktop
