#include "capture/screenshots.h"

#include <algorithm>

#include "text/localized_error.h"

namespace tavrelon::capture {

using platform::CaptureError;
using platform::Image;

namespace {

template <typename T>
T valueOrThrow(std::expected<T, CaptureError> outcome) {
    if (!outcome)
        throw text::LocalizedError(outcome.error().description);
    return *std::move(outcome);
}

}  // namespace

async::Task<std::optional<QByteArray>> Screenshots::captureScreenshot() {
    if (screenshotMode == ScreenshotMode::none || !platform_.screenCapture.preflightAccess())
        co_return std::nullopt;
    auto image = screenshotMode == ScreenshotMode::focusedWindow ? co_await captureFocusedWindowImage()
                                                                 : co_await captureFullScreenImage();
    if (!image)
        co_return std::nullopt;
    co_return co_await encodeJPEG(*std::move(image));
}

std::shared_ptr<void> Screenshots::expectScreenshot() {
    return screenshotMode == ScreenshotMode::focusedWindow ? expectWindowImage() : nullptr;
}

std::shared_ptr<void> Screenshots::expectWindowImage() {
    return platform_.screenCapture.preflightAccess() ? platform_.screenCapture.expectCapture() : nullptr;
}

async::Task<std::optional<Image>> Screenshots::captureFocusedWindowImage() {
    // Both at once, before the wait: whatever comes to the front meanwhile was not asked about. Here the answer is
    // known from what was read in this turn.
    const auto application = platform_.workspace.frontmostApplication();
    if (!application || platform_.accessibility.isFocusSecure())
        co_return std::nullopt;
    const auto content = valueOrThrow(co_await platform_.screenCapture.shareableContent());
    const auto window = std::ranges::find_if(content.windows, [&](const platform::ShareableWindow& candidate) {
        return candidate.isOnScreen && candidate.bundleIdentifier == application->bundleIdentifier;
    });
    if (window == content.windows.end())
        co_return std::nullopt;
    co_return valueOrThrow(co_await platform_.screenCapture.captureWindow(*window));
}

async::Task<std::optional<Image>> Screenshots::captureFullScreenImage() {
    if (platform_.accessibility.isFocusSecure())
        co_return std::nullopt;
    const auto content = valueOrThrow(co_await platform_.screenCapture.shareableContent());
    if (content.displays.empty())
        co_return std::nullopt;
    co_return valueOrThrow(co_await platform_.screenCapture.captureDisplay(content.displays.front()));
}

async::Task<std::optional<QByteArray>> Screenshots::encodeJPEG(Image image) {
    co_return co_await platform_.imageCodec.jpegRepresentation(std::move(image), screenshotQuality);
}

async::Task<std::optional<Image>> Screenshots::scaledImage(Image image, double maxWidth) {
    if (!(image.width > maxWidth) || maxWidth < 1)
        co_return std::nullopt;
    const auto height = maxWidth / image.width * image.height;
    co_return co_await platform_.imageCodec.scaled(std::move(image), static_cast<int>(maxWidth),
                                                   static_cast<int>(height));
}

async::Task<std::optional<QByteArray>> Screenshots::screenshotOrNothing() {
    try {
        co_return co_await captureScreenshot();
    } catch (const std::exception&) {  // the request goes on without a picture
        co_return std::nullopt;
    }
}

}  // namespace tavrelon::capture
