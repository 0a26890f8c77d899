#pragma once

#include <QByteArray>
#include <QImage>
#include <QVariantMap>
#include <optional>

namespace tavrelon::desktop {

/// What KWin says of the pixels that it writes into the pipe.
struct KWinPixels {
    quint32 width = 0;
    quint32 height = 0;
    quint32 stride = 0;  ///< bytes
    quint32 format = 0;  ///< a `QImage::Format`
    bool operator==(const KWinPixels&) const = default;
};

/// Absent where a number is missing.
std::optional<KWinPixels> pixelsToldBy(const QVariantMap& told);

/// The head of what `tavrelon-window-picture` writes; the pixels come behind it.
QByteArray headOf(const KWinPixels& pixels);

/// The picture in what it has written, opaque: what is translucent lies over white. Null where the head does not fit
/// the pixels. Any thread.
QImage pictureIn(const QByteArray& written);

}  // namespace tavrelon::desktop
