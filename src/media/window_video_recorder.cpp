#include "media/window_video_recorder.h"

#include <algorithm>

#include "async/waits.h"

namespace tavrelon::media {

WindowVideoRecorder::WindowVideoRecorder(platform::Platform& platform, capture::Screenshots& screenshots,
                                         std::chrono::nanoseconds frameInterval, std::size_t maxFrames)
    : platform_(platform),
      screenshots_(screenshots),
      frameInterval_(frameInterval),
      maxFrames_(maxFrames),
      tasks_(platform.mainLoop) {}

async::Task<void> WindowVideoRecorder::startCapture() {
    frames_.clear();
    if (captureTask_)
        captureTask_->cancel();
    isCapturing_ = true;
    captureTask_ = tasks_.spawn(sample());
    co_return;
}

async::Task<std::vector<QByteArray>> WindowVideoRecorder::stopCapture() {
    isCapturing_ = false;
    if (captureTask_)
        captureTask_->cancel();
    captureTask_.reset();
    co_return frames_;
}

async::Task<void> WindowVideoRecorder::sample() {
    const auto cancellation = co_await async::currentCancellation();
    while (!cancellation->requested()) {
        if (auto frame = co_await takeFrame(); frame && isCapturing_)
            keep(*std::move(frame));
        co_await async::ignoringCancellation(async::pause(platform_.mainLoop, frameInterval_));
    }
}

async::Task<std::optional<QByteArray>> WindowVideoRecorder::takeFrame() {
    if (!platform_.screenCapture.preflightAccess())
        co_return std::nullopt;
    try {
        auto image = co_await screenshots_.captureFocusedWindowImage();
        if (!image)
            co_return std::nullopt;
        if (const auto width = widestFor(*image); width > 0)
            if (auto scaled = co_await screenshots_.scaledImage(*image, width))
                image = std::move(scaled);
        co_return co_await screenshots_.encodeJPEG(*std::move(image));
    } catch (const std::exception&) {  // costs this frame only
        co_return std::nullopt;
    }
}

/// 0 for no bound.
double WindowVideoRecorder::widestFor(const platform::Image& image) const {
    const double width = screenshots_.maxScreenshotWidth;
    if (longestSide <= 0 || image.width <= 0)
        return width;
    const double scaled = image.width * longestSide / std::max(image.width, image.height);
    return width > 0 ? std::min(width, scaled) : scaled;
}

void WindowVideoRecorder::keep(QByteArray frame) {
    frames_.push_back(std::move(frame));
    if (frames_.size() > maxFrames_)
        frames_.erase(frames_.begin(), frames_.end() - static_cast<std::ptrdiff_t>(maxFrames_));
}

}  // namespace tavrelon::media
