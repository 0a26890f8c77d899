#pragma once

#include <vector>

#include "platform/image_codec.h"

namespace tavrelon::testing {

/// Takes every picture that starts with "picture" for one. What it encodes says what it was and how.
class FakeImageCodec : public platform::ImageCodec {
 public:
    bool canEncode = true;

    async::Task<std::optional<platform::PasteboardItem>> pasteboardItem(QByteArray image) override {
        if (!image.startsWith("picture"))
            co_return std::nullopt;
        co_return platform::PasteboardItem{{{QStringLiteral("image/png"), "PNG of " + image}}};
    }

    async::Task<std::optional<QByteArray>> jpegRepresentation(platform::Image image, double quality) override {
        if (!canEncode)
            co_return std::nullopt;
        co_return "jpeg " + QByteArray::number(image.width) + 'x' + QByteArray::number(image.height) + ' ' +
            image.pixels.left(1) + ' ' + QByteArray::number(quality);
    }

    async::Task<std::optional<platform::Image>> scaled(platform::Image image, int width, int height) override {
        co_return platform::Image{width, height, QByteArray(qsizetype{4} * width * height, image.pixels.front())};
    }
};

}  // namespace tavrelon::testing
