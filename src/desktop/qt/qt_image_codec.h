#pragma once

#include <QThreadPool>
#include <functional>

#include "async/main_loop.h"
#include "platform/image_codec.h"
#include "platform/picture_decoder.h"

namespace tavrelon::desktop {

/// Pictures are offered as PNG, which every application pastes, and as BMP for the few old ones that take nothing else.
/// Nothing from elsewhere is decoded in this process.
class QtImageCodec : public platform::ImageCodec {
 public:
    /// Both must outlive the codec, which waits at its end for the work under way.
    QtImageCodec(async::MainLoop& loop, platform::PictureDecoder& decoder) : loop_(loop), decoder_(decoder) {}

    async::Task<std::optional<platform::PasteboardItem>> pasteboardItem(QByteArray image) override;
    async::Task<std::optional<QByteArray>> jpegRepresentation(platform::Image image, double quality) override;
    async::Task<std::optional<platform::Image>> scaled(platform::Image image, int width, int height) override;

 private:
    template <typename T>
    async::Task<T> inBackground(std::function<T()> work);

    async::MainLoop& loop_;
    platform::PictureDecoder& decoder_;
    QThreadPool threads_;
};

}  // namespace tavrelon::desktop
