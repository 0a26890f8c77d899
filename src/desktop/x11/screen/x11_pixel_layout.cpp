#include "desktop/x11/screen/x11_pixel_layout.h"

#include <bit>

namespace tavrelon::desktop {

namespace {

/// The part of a pixel under the mask, as one of 256 steps.
unsigned char channel(std::uint32_t pixel, std::uint32_t mask) {
    const int shift = std::countr_zero(mask);
    const auto most = mask >> shift;
    return static_cast<unsigned char>(((pixel & mask) >> shift) * 255 / most);
}

/// The first visual of the depth whose pixels are colours. A picture does not tell its visual.
const xcb_visualtype_t* trueColour(const xcb_setup_t* setup, std::uint8_t depth) {
    const auto* screen = xcb_setup_roots_iterator(setup).data;
    for (auto depths = xcb_screen_allowed_depths_iterator(screen); depths.rem; xcb_depth_next(&depths))
        if (depths.data->depth == depth)
            for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem; xcb_visualtype_next(&visuals))
                if (visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR)
                    return visuals.data;
    return nullptr;
}

}  // namespace

std::size_t PixelLayout::bytesPerRow(std::size_t width) const {
    return (width * bytesPerPixel + rowUnit - 1) / rowUnit * rowUnit;
}

bool PixelLayout::isPlain() const {
    return bytesPerPixel == 4 && red == 0xFF0000 && green == 0xFF00 && blue == 0xFF;
}

void PixelLayout::convertRow(const unsigned char* from, unsigned char* to, std::size_t width) const {
    for (std::size_t x = 0; x < width; ++x, from += bytesPerPixel, to += 4) {
        std::uint32_t pixel = 0;
        for (std::size_t byte = 0; byte < bytesPerPixel; ++byte)
            pixel |= std::uint32_t{from[byte]} << (8 * byte);
        to[0] = channel(pixel, blue);
        to[1] = channel(pixel, green);
        to[2] = channel(pixel, red);
        to[3] = 0xFF;
    }
}

std::optional<PixelLayout> pixelLayout(xcb_connection_t* connection, std::uint8_t depth) {
    const auto* setup = xcb_get_setup(connection);
    const auto* visual = trueColour(setup, depth);
    if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST || !visual || !visual->red_mask || !visual->green_mask ||
        !visual->blue_mask)
        return std::nullopt;
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem; xcb_format_next(&formats))
        if (formats.data->depth == depth && (formats.data->bits_per_pixel == 16 || formats.data->bits_per_pixel == 32))
            return PixelLayout{formats.data->bits_per_pixel / std::size_t{8},
                               formats.data->scanline_pad / std::size_t{8}, visual->red_mask, visual->green_mask,
                               visual->blue_mask};
    return std::nullopt;
}

}  // namespace tavrelon::desktop
