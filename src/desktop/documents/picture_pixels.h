#pragma once

#include <QImage>

namespace tavrelon::desktop {

/// Decodes a picture by the one decoder for its format, which its first bytes tell; no other is tried. The pixels are
/// of Format_ARGB32. Null when the bytes are no picture within the bounds of platform/picture_header.h.
QImage picturePixels(const QByteArray& picture);

}  // namespace tavrelon::desktop
