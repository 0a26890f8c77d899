#include "desktop/qt/qt_image_codec.h"

#include <turbojpeg.h>

#include <QBuffer>
#include <QImage>
#include <QImageReader>
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

bool isPicture(const platform::Image& image) {
    return image.width > 0 && image.height > 0 && image.pixels.size() == qsizetype{4} * image.width * image.height;
}

const uchar* pixelsOf(const platform::Image& image) {
    return reinterpret_cast<const uchar*>(image.pixels.constData());
}

std::optional<QByteArray> encodeJpeg(const platform::Image& image, double quality) {
    if (!isPicture(image))
        return std::nullopt;
    // Not by Qt, which first makes rows of another order.
    const std::unique_ptr<void, decltype(&tjDestroy)> compressor(tjInitCompress(), tjDestroy);
    uchar* written = nullptr;
    unsigned long size = 0;
    const auto percent = static_cast<int>(std::lround(std::clamp(quality, 0.01, 1.0) * 100));
    const int failed = tjCompress2(compressor.get(), pixelsOf(image), image.width, 0, image.height, TJPF_BGRX, &written,
                                   &size, TJSAMP_420, percent, TJFLAG_ACCURATEDCT);
    const std::unique_ptr<uchar, decltype(&tjFree)> owner(written, tjFree);
    if (failed)
        return std::nullopt;
    return QByteArray(reinterpret_cast<const char*>(written), static_cast<qsizetype>(size));
}

std::optional<platform::Image> scale(const platform::Image& image, int width, int height) {
    if (!isPicture(image) || width <= 0 || height <= 0)
        return std::nullopt;
    const QImage picture(pixelsOf(image), image.width, image.height, QImage::Format_RGB32);
    // The smooth transformation averages all pixels that fall into one, so small text stays legible.
    const auto result =
        std::make_shared<const QImage>(picture.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                           .convertToFormat(QImage::Format_RGB32));
    if (result->isNull())
        return std::nullopt;
    // Rows of four-byte pixels have no gaps.
    return platform::Image{
        width, height,
        QByteArray::fromRawData(reinterpret_cast<const char*>(result->constBits()), result->sizeInBytes()), result};
}

}  // namespace

std::optional<platform::PasteboardItem> pasteboardItemOf(const QByteArray& image) {
    QBuffer buffer;
    buffer.setData(image);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);  // QImageReader's own allocation limit is the bound that the header names
    reader.setAutoTransform(true);
    const bool isPng = reader.format() == "png" && reader.transformation() == QImageIOHandler::TransformationNone;
    const auto picture = reader.read();
    if (picture.isNull())
        return std::nullopt;
    platform::PasteboardItem item;
    for (const QByteArrayView format : {"png", "bmp"})
        if (auto bytes = isPng && format == "png" ? image : encoded(picture, format.data()); !bytes.isEmpty())
            item.dataByType.emplace_back(QStringLiteral("image/") + QLatin1StringView(format), std::move(bytes));
    if (item.dataByType.empty())
        return std::nullopt;
    return item;
}

template <typename T>
async::Task<T> QtImageCodec::inBackground(std::function<T()> work) {
    co_return co_await async::fromCallback<T>(loop_, [this, &work](auto resolver) {
        threads_.start([resolver, work]() mutable { resolver.resolve(work()); });
        return std::monostate();
    });
}

async::Task<std::optional<platform::PasteboardItem>> QtImageCodec::pasteboardItem(QByteArray image) {
    co_return co_await inBackground<std::optional<platform::PasteboardItem>>(
        [image = std::move(image)] { return pasteboardItemOf(image); });
}

async::Task<std::optional<QByteArray>> QtImageCodec::jpegRepresentation(platform::Image image, double quality) {
    co_return co_await inBackground<std::optional<QByteArray>>(
        [image = std::move(image), quality] { return encodeJpeg(image, quality); });
}

async::Task<std::optional<platform::Image>> QtImageCodec::scaled(platform::Image image, int width, int height) {
    co_return co_await inBackground<std::optional<platform::Image>>(
        [image = std::move(image), width, height] { return scale(image, width, height); });
}

}  // namespace tavrelon::desktop
