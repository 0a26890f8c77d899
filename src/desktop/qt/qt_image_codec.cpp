#include "desktop/qt/qt_image_codec.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

namespace tavrelon::desktop {

namespace {

QByteArray encoded(const QImage& picture, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return picture.save(&buffer, format) ? bytes : QByteArray();
}

}  // namespace

std::optional<platform::PasteboardItem> QtImageCodec::pasteboardItem(const QByteArray& image) {
    QBuffer buffer;
    buffer.setData(image);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);  // QImageReader's own allocation limit is the bound that the header names
    reader.setAutoTransform(true);
    const auto picture = reader.read();
    if (picture.isNull())
        return std::nullopt;
    platform::PasteboardItem item;
    for (const char* format : {"png", "bmp"})
        if (auto bytes = encoded(picture, format); !bytes.isEmpty())
            item.dataByType.emplace_back(QStringLiteral("image/") + QLatin1StringView(format), std::move(bytes));
    if (item.dataByType.empty())
        return std::nullopt;
    return item;
}

}  // namespace tavrelon::desktop
