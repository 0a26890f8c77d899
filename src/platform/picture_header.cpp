#include "platform/picture_header.h"

namespace tavrelon::platform {

namespace {

struct Size {
    qint64 width = 0;
    qint64 height = 0;
};

/// Reads numbers at places that may lie beyond the end, where they are 0: no picture has that size.
class Numbers {
 public:
    explicit Numbers(QByteArrayView bytes) : bytes_(bytes) {}

    qint64 byte(qsizetype at) const { return at < bytes_.size() ? static_cast<unsigned char>(bytes_[at]) : 0; }
    qint64 little(qsizetype at, int count) const {
        qint64 number = 0;
        for (int i = count; i > 0; --i)
            number = number << 8 | byte(at + i - 1);
        return number;
    }
    qint64 big(qsizetype at, int count) const {
        qint64 number = 0;
        for (int i = 0; i < count; ++i)
            number = number << 8 | byte(at + i);
        return number;
    }

 private:
    QByteArrayView bytes_;
};

Size pngSize(const Numbers& numbers) {
    return {numbers.big(16, 4), numbers.big(20, 4)};
}

Size gifSize(const Numbers& numbers) {
    return {numbers.little(6, 2), numbers.little(8, 2)};
}

/// The size stands in the frame header, behind any number of other segments.
Size jpegSize(QByteArrayView bytes) {
    const Numbers numbers(bytes);
    for (qsizetype at = 2; at + 9 <= bytes.size() && numbers.byte(at) == 0xFF;) {
        const auto marker = numbers.byte(at + 1);
        if (marker == 0xFF) {  // padding
            ++at;
            continue;
        }
        const bool isTable = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
        if (marker >= 0xC0 && marker <= 0xCF && !isTable)
            return {numbers.big(at + 7, 2), numbers.big(at + 5, 2)};
        const auto length = numbers.big(at + 2, 2);
        if (length < 2)
            break;
        at += 2 + length;
    }
    return {};
}

Size webpSize(QByteArrayView bytes) {
    const Numbers numbers(bytes);
    const auto chunk = bytes.sliced(12);
    constexpr qint64 fourteenBits = 0x3FFF;
    if (chunk.startsWith("VP8 "))
        return {numbers.little(26, 2) & fourteenBits, numbers.little(28, 2) & fourteenBits};
    if (chunk.startsWith("VP8L")) {
        const auto packed = numbers.little(21, 4);
        return {(packed & fourteenBits) + 1, (packed >> 14 & fourteenBits) + 1};
    }
    if (chunk.startsWith("VP8X"))
        return {numbers.little(24, 3) + 1, numbers.little(27, 3) + 1};
    return {};
}

std::optional<PictureHeader> headerOf(PictureFormat format, Size size) {
    if (!isPictureSize(size.width, size.height))
        return std::nullopt;
    return PictureHeader{format, static_cast<int>(size.width), static_cast<int>(size.height)};
}

}  // namespace

bool isPictureSize(qint64 width, qint64 height) {
    return width > 0 && height > 0 && width <= pictureSideCap && height <= pictureSideCap &&
           width * height <= picturePixelCap;
}

std::optional<PictureHeader> pictureHeader(QByteArrayView bytes) {
    constexpr qsizetype shortest = 24;  // bytes that a PNG needs to tell its size, the longest of the fixed heads
    if (bytes.size() < shortest || bytes.size() > pictureByteCap)
        return std::nullopt;
    const Numbers numbers(bytes);
    if (bytes.startsWith(QByteArrayView("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16)))
        return headerOf(PictureFormat::Png, pngSize(numbers));
    if (bytes.startsWith(QByteArrayView("\xff\xd8\xff", 3)))
        return headerOf(PictureFormat::Jpeg, jpegSize(bytes));
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a"))
        return headerOf(PictureFormat::Gif, gifSize(numbers));
    if (bytes.startsWith("RIFF") && bytes.sliced(8).startsWith("WEBP"))
        return headerOf(PictureFormat::WebP, webpSize(bytes));
    return std::nullopt;
}

}  // namespace tavrelon::platform
