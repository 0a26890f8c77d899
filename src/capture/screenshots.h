#pragma once

#include <memory>

#include "async/task.h"
#include "platform/platform.h"

namespace tavrelon::capture {

/// What a screenshot shows. No mode stands in for another: the whole screen goes out only where the user chose it.
enum class ScreenshotMode { focusedWindow, fullScreen, none };

/// Pictures of what the user sees. Main thread. Operations throw what the platform reports.
class Screenshots {
 public:
    explicit Screenshots(platform::Platform& platform) : platform_(platform) {}

    ScreenshotMode screenshotMode = ScreenshotMode::focusedWindow;
    double screenshotQuality = 0.7;    ///< JPEG compression factor, 0 to 1
    double maxScreenshotWidth = 1920;  ///< pixels; for frames of a video, while a request's picture keeps its size

    /// A picture by `screenshotMode`, as JPEG; absent without the right to capture and while a password field has the
    /// focus.
    async::Task<std::optional<QByteArray>> captureScreenshot();

    /// The same; a failure is an absent picture.
    async::Task<std::optional<QByteArray>> screenshotOrNothing();

    /// Says that a screenshot of what is now in front will be wanted, so that it takes no time then. For as long as the
    /// result lives, which the platform must outlive; safe inside the key callback.
    std::shared_ptr<void> expectScreenshot();

    /// The same for `captureFocusedWindowImage`, whatever the mode.
    std::shared_ptr<void> expectWindowImage();

    /// The first window of the frontmost application; absent where it has none on screen, and while a password field
    /// has the focus.
    async::Task<std::optional<platform::Image>> captureFocusedWindowImage();
    async::Task<std::optional<platform::Image>> captureFullScreenImage();

    /// JPEG with `screenshotQuality`.
    async::Task<std::optional<QByteArray>> encodeJPEG(platform::Image image);

    /// The image at `maxWidth` with its aspect kept; absent where it is no wider.
    async::Task<std::optional<platform::Image>> scaledImage(platform::Image image, double maxWidth);

 private:
    platform::Platform& platform_;
};

}  // namespace tavrelon::capture
