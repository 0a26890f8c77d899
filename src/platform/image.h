#pragma once

#include <QByteArray>
#include <memory>

namespace tavrelon::platform {

/// A picture in memory: rows from the top, without gaps, of four bytes for each pixel: blue, green, red, and one that
/// means nothing where nothing else is said. Copies share the bytes.
struct Image {
    int width = 0;
    int height = 0;
    QByteArray pixels;
    std::shared_ptr<const void> memory{};  ///< where the pixels are, if not in the array's own

    bool operator==(const Image& other) const {
        return width == other.width && height == other.height && pixels == other.pixels;
    }
};

}  // namespace tavrelon::platform
