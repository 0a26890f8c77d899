#pragma once

#include <QThreadPool>
#include <functional>

#include "async/main_loop.h"
#include "platform/image_codec.h"

namespace tavrelon::desktop {

/// The picture as PNG and BMP; absent when the bytes are no picture. Any thread.
std::optional<platform::PasteboardItem> pasteboardItemOf(const QByteArray& image);

/// Decodes every format that Qt's image plug-ins know. Pictures are offered as PNG, which every application pastes,
/// and as BMP for the few old ones that take nothing else. A picture of more than 256 MiB of pixels is refused.
class QtImageCodec : public platform::ImageCodec {
 public:
    /// The loop must outlive the codec, which waits at its end for the work under way.
    explicit QtImageCodec(async::MainLoop& loop) : loop_(loop) {}

    async::Task<std::optional<platform::PasteboardItem>> pasteboardItem(QByteArray image) override;
    async::Task<std::optional<QByteArray>> jpegRepresentation(platform::Image image, double quality) override;
    async::Task<std::optional<platform::Image>> scaled(platform::Image image, int width, int height) override;

 private:
    template <typename T>
    async::Task<T> inBackground(std::function<T()> work);

    async::MainLoop& loop_;
    QThreadPool threads_;
};

}  // namespace tavrelon::desktop
