#pragma once

#include <QByteArray>

namespace tavrelon::platform {

/// A picture in memory: rows from the top, without gaps, of four bytes for each pixel: blue, green, red, and one that
/// means nothing. Copies share the bytes.
struct Image {
    int width = 0;
    int height = 0;
    QByteArray pixels;
    bool operator==(const Image&) const = default;
};

}  // namespace tavrelon::platform
