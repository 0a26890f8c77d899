#include "desktop/qt/qt_image_codec.h"

#include <turbojpeg.h>

#include <QBuffer>
#include <QImage>
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

bool isOpaque(const QImage& picture) {
    for (int y = 0; y < picture.height(); ++y) {
        const auto* const row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        if (!std::all_of(row, row + picture.width(), [](QRgb pixel) { return qAlpha(pixel) == 0xFF; }))
            return false;
    }
    return true;
}

/// Of pixels whose fourth byte is their opacity.
std::optional<platform::PasteboardItem> encodedItem(const platform::Image& image) {
    if (!isPicture(image))
        return std::nullopt;
    QImage picture(pixelsOf(image), image.width, image.height, QImage::Format_ARGB32);
    if (isOpaque(picture))
        picture.reinterpretAsFormat(QImage::Format_RGB32);
    platform::PasteboardItem item;
    for (const char* format : {"png", "bmp"}) {
        auto bytes = encoded(picture, format);
        if (bytes.isEmpty())
            return std::nullopt;
        item.dataByType.emplace_back(QStringLiteral("image/") + QLatin1StringView(format), std::move(bytes));
    }
    return item;
}

}  // namespace

template <typename T>
async::Task<T> QtImageCodec::inBackground(std::function<T()> work) {
    co_return co_await async::fromCallback<T>(loop_, [this, &work](auto resolver) {
        threads_.start([resolver, work]() mutable { resolver.resolve(work()); });
        return std::monostate();
    });
}

async::Task<std::optional<platform::PasteboardItem>> QtImageCodec::pasteboardItem(QByteArray image) {
    auto decoded = co_await decoder_.decode(std::move(image));
    if (!decoded)
        co_return std::nullopt;
    co_return co_await inBackground<std::optional<platform::PasteboardItem>>(
        [pixels = *std::move(decoded)] { return encodedItem(pixels); });
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
