#include "desktop/documents/picture_pixels.h"

#include <webp/decode.h>

#include <QBuffer>
#include <QImageReader>

#include "platform/picture_header.h"

namespace tavrelon::desktop {

using platform::PictureFormat;

namespace {

QImage readByQt(const QByteArray& picture, const char* format) {
    QBuffer buffer;
    buffer.setData(picture);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    auto pixels = reader.read();
    // A decoder need not believe the header that was looked at.
    if (!platform::isPictureSize(pixels.width(), pixels.height()))
        return {};
    return std::move(pixels).convertToFormat(QImage::Format_ARGB32);
}

QImage readWebP(const QByteArray& picture, const platform::PictureHeader& header) {
    QImage pixels(header.width, header.height, QImage::Format_ARGB32);
    if (pixels.isNull())
        return {};
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(picture.constData());
    const auto size = static_cast<std::size_t>(picture.size());
    int width = 0;
    int height = 0;
    if (!WebPGetInfo(bytes, size, &width, &height) || pixels.size() != QSize(width, height))
        return {};
    if (!WebPDecodeBGRAInto(bytes, size, pixels.bits(), static_cast<std::size_t>(pixels.sizeInBytes()),
                            static_cast<int>(pixels.bytesPerLine())))
        return {};
    return pixels;
}

}  // namespace

QImage picturePixels(const QByteArray& picture) {
    const auto header = platform::pictureHeader(picture);
    if (!header)
        return {};
    switch (header->format) {
        case PictureFormat::Png:
            return readByQt(picture, "png");
        case PictureFormat::Jpeg:
            return readByQt(picture, "jpeg");
        case PictureFormat::Gif:
            return readByQt(picture, "gif");
        case PictureFormat::WebP:
            return readWebP(picture, *header);
    }
    return {};
}

}  // namespace tavrelon::desktop
