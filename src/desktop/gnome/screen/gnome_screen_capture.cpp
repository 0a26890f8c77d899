#include "desktop/gnome/screen/gnome_screen_capture.h"

#include <QImage>

#include "async/waits.h"

namespace tavrelon::desktop {

using platform::CaptureError;
using platform::ShareableContent;
using platform::ShareableDisplay;
using platform::ShareableWindow;

namespace {

std::unexpected<CaptureError> error(const char* text) {
    return std::unexpected(CaptureError{QString::fromUtf8(text)});
}

std::expected<platform::Image, CaptureError> decoded(const QByteArray& base64) {
    auto image = QImage::fromData(QByteArray::fromBase64(base64), "PNG").convertToFormat(QImage::Format_RGB32);
    if (image.isNull())
        return error("GNOME's shell gives no picture.");
    const auto shared = std::make_shared<const QImage>(std::move(image));
    return platform::Image{
        shared->width(), shared->height(),
        QByteArray::fromRawData(reinterpret_cast<const char*>(shared->constBits()), shared->sizeInBytes()), shared};
}

std::optional<QByteArray> pngIn(const std::optional<text::Json>& answer) {
    const auto* png = answer ? text::find(*answer, "png") : nullptr;
    return png && png->is_string() ? std::optional(QByteArray::fromStdString(png->get<std::string>())) : std::nullopt;
}

int numberUnder(const text::Json& json, const char* key) {
    return static_cast<int>(text::integerFrom(text::required(json, key)));
}

}  // namespace

async::Task<std::expected<ShareableContent, CaptureError>> GnomeScreenCapture::shareableContent() {
    const auto answer = shell_->ask("displays");
    if (!answer)
        co_return error("GNOME's shell does not tell its displays.");
    ShareableContent content;
    try {
        for (const auto& display : text::arrayFrom(text::required(*answer, "displays")))
            content.displays.push_back({.identifier = static_cast<quint64>(numberUnder(display, "number")),
                                        .width = numberUnder(display, "width"),
                                        .height = numberUnder(display, "height")});
    } catch (const text::JsonError&) {
        co_return error("GNOME's shell tells its displays in an unknown way.");
    }
    for (const auto& [window, number, isShown] : workspace_.windows())
        content.windows.push_back(
            {.identifier = number,
             .bundleIdentifier = workspace_.applicationBehind(window).bundleIdentifier,
             .isOnScreen = isShown,
             .width = window.place.width - window.place.shadow.left - window.place.shadow.right,
             .height = window.place.height - window.place.shadow.top - window.place.shadow.bottom});
    co_return content;
}

async::Task<GnomeScreenCapture::Picture> GnomeScreenCapture::captureWindow(ShareableWindow window) {
    const auto identifier = workspace_.identifierOf(window.identifier);
    if (!identifier)
        co_return error("The window is no longer there.");
    co_return co_await picture({{"window", text::toJson(*identifier)}});
}

async::Task<GnomeScreenCapture::Picture> GnomeScreenCapture::captureDisplay(ShareableDisplay display) {
    co_return co_await picture({{"display", display.identifier}});
}

async::Task<GnomeScreenCapture::Picture> GnomeScreenCapture::picture(text::Json question) {
    // Both the answer and the timer may come last, and neither after the task's end.
    struct Pending {
        bool isOpen = true;
        async::Timer timer;
    };
    co_return co_await async::fromCallback<Picture>(loop_, [this, &question](auto resolver) {
        auto pending = std::make_shared<Pending>();
        auto resolve = [weak = std::weak_ptr(pending), resolver](Picture picture) mutable {
            const auto open = weak.lock();
            if (open && std::exchange(open->isOpen, false))
                resolver.resolve(std::move(picture));
        };
        pending->timer = loop_.after(
            pictureLimit, [resolve]() mutable { resolve(error("GNOME's shell gives no picture in time.")); });
        shell_->askLater(
            "picture", std::move(question),
            [this, weak = std::weak_ptr(pending), resolver, resolve](const std::optional<text::Json>& answer) mutable {
                const auto png = pngIn(answer);
                if (!png) {
                    resolve(error("GNOME's shell gives no picture."));
                    return;
                }
                const auto open = weak.lock();
                if (!open || !std::exchange(open->isOpen, false))
                    return;
                queue_.post([resolver, png = *png, stillWanted = weak]() mutable {
                    if (!stillWanted.expired())
                        resolver.resolve(decoded(png));
                });
            });
        return pending;
    });
}

}  // namespace tavrelon::desktop
