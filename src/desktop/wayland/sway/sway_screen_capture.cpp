#include "desktop/wayland/sway/sway_screen_capture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tavrelon::desktop {

using platform::CaptureError;
using platform::ShareableContent;
using platform::ShareableDisplay;
using platform::ShareableWindow;

namespace {

std::unexpected<CaptureError> error(const char* text) {
    return std::unexpected(CaptureError{QString::fromUtf8(text)});
}

int pixels(int logical, double scale) {
    return static_cast<int>(std::lround(logical * scale));
}

/// Shows of the overlays, which are in logical pixels of the region, what was there ahead.
void uncover(QImage& picture, const QImage& ahead, const QRect& region, const std::vector<QRect>& overlays) {
    if (ahead.size() != picture.size())
        return;
    const double across = static_cast<double>(picture.width()) / region.width();
    const double down = static_cast<double>(picture.height()) / region.height();
    QPainter painter(&picture);
    for (const auto& overlay : overlays) {
        const auto place =
            QRectF(overlay.x() * across, overlay.y() * down, overlay.width() * across, overlay.height() * down)
                .toAlignedRect()
                .intersected(picture.rect());
        painter.drawImage(place.topLeft(), ahead, place);
    }
}

}  // namespace

async::Task<std::expected<ShareableContent, CaptureError>> SwayScreenCapture::shareableContent() {
    const auto outputs = workspace_.outputs();
    const auto windows = workspace_.windows();
    if (outputs.empty() || !windows)
        co_return error("sway does not tell its displays and windows.");
    ShareableContent content;
    for (std::size_t i = 0; i < outputs.size(); ++i)
        content.displays.push_back({.identifier = i,
                                    .width = pixels(outputs[i].area.width(), outputs[i].scale),
                                    .height = pixels(outputs[i].area.height(), outputs[i].scale)});
    for (const auto& window : *windows)
        content.windows.push_back({.identifier = window.identifier,
                                   .bundleIdentifier = workspace_.applicationBehind(window).bundleIdentifier,
                                   .isOnScreen = window.isVisible,
                                   .width = window.place.width,
                                   .height = window.place.height});
    co_return content;
}

async::Task<SwayScreenCapture::Picture> SwayScreenCapture::captureWindow(ShareableWindow window) {
    const auto until = std::chrono::steady_clock::now() + limit;
    const auto windows = workspace_.windows();
    if (!windows)
        co_return error("sway does not tell its windows.");
    const auto found = std::ranges::find(*windows, window.identifier, &SwayWindow::identifier);
    const auto shown = found == windows->end() ? std::nullopt : shownPartOf(*found);
    if (!shown)
        co_return error("The window is no longer on the screen.");
    const auto known = ahead_.lock();
    const auto ahead = known && known->window == window.identifier && known->shown == *shown ? known : nullptr;
    std::vector<QRect> overlays;
    for (const auto& overlay : overlays_())
        overlays.push_back(overlay.translated(-shown->corner));
    co_return co_await queue_.picture([region = shown->region, ahead, overlays, until] {
        auto picture = takePicture(region, until);
        if (picture && ahead)
            uncover(*picture, ahead->picture, region.area, overlays);
        return picture;
    });
}

async::Task<SwayScreenCapture::Picture> SwayScreenCapture::captureDisplay(ShareableDisplay display) {
    const auto until = std::chrono::steady_clock::now() + limit;
    const auto outputs = workspace_.outputs();
    if (display.identifier >= outputs.size())
        co_return error("The display is no longer there.");
    const auto& output = outputs[display.identifier];
    const OutputRegion region{output.name, {QPoint(), output.area.size()}};
    co_return co_await queue_.picture([region, until] { return takePicture(region, until); });
}

std::shared_ptr<void> SwayScreenCapture::expectCapture() {
    const auto window = workspace_.focusedWindow();
    const auto shown = window ? shownPartOf(*window) : std::nullopt;
    if (!shown)
        return nullptr;
    auto ahead = std::make_shared<Ahead>(Ahead{window->identifier, *shown, {}});
    ahead_ = ahead;
    queue_.post([ahead, until = std::chrono::steady_clock::now() + aheadLimit] {
        if (auto picture = takePicture(ahead->shown.region, until))
            ahead->picture = *std::move(picture);
    });
    return ahead;
}

/// Of the display that shows most of it.
std::optional<SwayScreenCapture::Shown> SwayScreenCapture::shownPartOf(const SwayWindow& window) {
    if (!window.isVisible)
        return std::nullopt;
    const QRect frame(window.place.x, window.place.y, window.place.width, window.place.height);
    std::optional<Shown> best;
    for (const auto& output : workspace_.outputs()) {
        const auto part = frame.intersected(output.area);
        const auto most = best ? best->region.area.width() * best->region.area.height() : 0;
        if (part.width() * part.height() > most)
            best = Shown{{output.name, part.translated(-output.area.topLeft())}, part.topLeft()};
    }
    return best;
}

}  // namespace tavrelon::desktop
