#include "desktop/qt/qt_image_codec.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <algorithm>
#include <cmath>
#include <variant>

#include "async/waits.h"

namespace tavrelon::desktop {

namespace {

QByteArray encoded(const QImage& picture, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return picture.save(&buffer, format) ? bytes : QByteArray();
}

/// Shares the bytes, which must outlive the result.
QImage view(const platform::Image& image) {
    const qsizetype rowBytes = qsizetype{image.width} * 4;
    if (image.width <= 0 || image.height <= 0 || image.pixels.size() != rowBytes * image.height)
        return {};
    return {reinterpret_cast<const uchar*>(image.pixels.constData()), image.width, image.height, rowBytes,
            QImage::Format_RGB32};
}

std::optional<QByteArray> encodeJpeg(const platform::Image& image, double quality) {
    const auto picture = view(image);
    if (picture.isNull())
        return std::nullopt;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(static_cast<int>(std::lround(std::clamp(quality, 0.0, 1.0) * 100)));
    if (!writer.write(picture))
        return std::nullopt;
    return bytes;
}

std::optional<platform::Image> scale(const platform::Image& image, int width, int height) {
    const auto picture = view(image);
    if (picture.isNull() || width <= 0 || height <= 0)
        return std::nullopt;
    // The smooth transformation averages all pixels that fall into one, so small text stays legible.
    const auto result = picture.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                            .convertToFormat(QImage::Format_RGB32);
    if (result.isNull())
        return std::nullopt;
    // Rows of four-byte pixels have no gaps.
    return platform::Image{width, height,
                           QByteArray(reinterpret_cast<const char*>(result.constBits()), result.sizeInBytes())};
}

}  // namespace

template <typename T>
async::Task<T> QtImageCodec::inBackground(std::function<T()> work) {
    co_return co_await async::fromCallback<T>(loop_, [this, &work](auto resolver) {
        threads_.start([resolver, work]() mutable { resolver.resolve(work()); });
        return std::monostate();
    });
}

async::Task<std::optional<QByteArray>> QtImageCodec::jpegRepresentation(platform::Image image, double quality) {
    co_return co_await inBackground<std::optional<QByteArray>>(
        [image = std::move(image), quality] { return encodeJpeg(image, quality); });
}

async::Task<std::optional<platform::Image>> QtImageCodec::scaled(platform::Image image, int width, int height) {
    co_return co_await inBackground<std::optional<platform::Image>>(
        [image = std::move(image), width, height] { return scale(image, width, height); });
}

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
