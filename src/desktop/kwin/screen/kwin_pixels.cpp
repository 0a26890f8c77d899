#include "desktop/kwin/screen/kwin_pixels.h"

#include <QDataStream>
#include <QPainter>

namespace tavrelon::desktop {

namespace {

constexpr qsizetype headSize = 4 * sizeof(quint32);
constexpr quint32 sideLimit = 32767;  // pixels, of what is painted

}  // namespace

std::optional<KWinPixels> pixelsToldBy(const QVariantMap& told) {
    KWinPixels pixels;
    for (const auto& [name, number] : {std::pair("width", &pixels.width), std::pair("height", &pixels.height),
                                       std::pair("stride", &pixels.stride), std::pair("format", &pixels.format)}) {
        bool isNumber = false;
        *number = told.value(QString::fromLatin1(name)).toUInt(&isNumber);
        if (!isNumber)
            return std::nullopt;
    }
    return pixels;
}

QByteArray headOf(const KWinPixels& pixels) {
    QByteArray head;
    QDataStream stream(&head, QDataStream::WriteOnly);
    stream << pixels.width << pixels.height << pixels.stride << pixels.format;
    return head;
}

QImage pictureIn(const QByteArray& written) {
    KWinPixels pixels;
    QDataStream(written) >> pixels.width >> pixels.height >> pixels.stride >> pixels.format;
    const auto size = written.size() - headSize;
    const bool isKnown = pixels.format > QImage::Format_Invalid && pixels.format < QImage::NImageFormats;
    if (size <= 0 || !isKnown || pixels.width > sideLimit || pixels.height > sideLimit || pixels.stride % 4 != 0 ||
        static_cast<quint64>(size) != static_cast<quint64>(pixels.stride) * pixels.height)
        return {};
    const auto format = static_cast<QImage::Format>(pixels.format);
    const auto rowBits = static_cast<quint64>(pixels.width) * QImage::toPixelFormat(format).bitsPerPixel();
    if (rowBits == 0 || rowBits > static_cast<quint64>(pixels.stride) * 8)
        return {};
    const QImage given(reinterpret_cast<const uchar*>(written.constData()) + headSize, static_cast<int>(pixels.width),
                       static_cast<int>(pixels.height), static_cast<qsizetype>(pixels.stride), format);
    if (!given.hasAlphaChannel())
        return given.convertToFormat(QImage::Format_RGB32).copy();
    QImage opaque(given.size(), QImage::Format_RGB32);
    opaque.fill(Qt::white);
    QPainter(&opaque).drawImage(0, 0, given);
    return opaque;
}

}  // namespace tavrelon::desktop
