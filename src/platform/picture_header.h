#pragma once

#include <QByteArrayView>
#include <cstdint>
#include <optional>

namespace tavrelon::platform {

/// The formats in which a picture may come from elsewhere.
enum class PictureFormat : std::uint8_t { Png, Jpeg, Gif, WebP };

/// What the beginning of a picture says of it.
struct PictureHeader {
    PictureFormat format = PictureFormat::Png;
    int width = 0;  ///< pixels
    int height = 0;

    bool operator==(const PictureHeader&) const = default;
};

/// Bounds on a picture from elsewhere: 32 Mi pixels take 128 MiB once they are decoded.
inline constexpr qsizetype pictureByteCap = qsizetype{64} << 20;
inline constexpr int pictureSideCap = 1 << 14;
inline constexpr qint64 picturePixelCap = qint64{1} << 25;

/// Told by the first bytes, whatever a name or a service says. Absent for every other format, where the size is
/// missing, and beyond the bounds. Nothing is decoded; a part of the file is enough, if it holds the size. Any thread.
std::optional<PictureHeader> pictureHeader(QByteArrayView bytes);

/// Whether a picture of this size keeps to the bounds.
bool isPictureSize(qint64 width, qint64 height);

}  // namespace tavrelon::platform
