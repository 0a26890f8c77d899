#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tavrelon::desktop {

/// How the server lays out the pixels of a depth: in rows of whole pixels, each a number that is low byte first.
struct PixelLayout {
    std::size_t bytesPerPixel = 0;  ///< 2 or 4
    std::size_t rowUnit = 0;        ///< each row takes a multiple of so many bytes
    std::uint32_t red = 0, green = 0, blue = 0;

    std::size_t bytesPerRow(std::size_t width) const;

    /// Whether the pixels are those of `platform::Image` as they are.
    bool isPlain() const;

    /// Writes `width` pixels as those of `platform::Image`.
    void convertRow(const unsigned char* from, unsigned char* to, std::size_t width) const;
};

/// Absent where pixels of that depth are no colours by themselves, or are laid out in another way.
std::optional<PixelLayout> pixelLayout(xcb_connection_t* connection, std::uint8_t depth);

}  // namespace tavrelon::desktop
