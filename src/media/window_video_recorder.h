#pragma once

#include <QByteArray>
#include <chrono>
#include <vector>

#include "async/task_scope.h"
#include "capture/screenshots.h"

namespace tavrelon::media {

/// Samples the window in front while it runs and keeps the latest pictures. Main thread, which is what keeps two tasks
/// from touching the frames at once. Nothing fails: a picture that could not be taken is missing.
class WindowVideoRecorder {
 public:
    WindowVideoRecorder(platform::Platform& platform, capture::Screenshots& screenshots,
                        std::chrono::nanoseconds frameInterval, std::size_t maxFrames);

    /// Pixels; a frame that is longer on one side is made smaller. 0 for no bound but that of the screenshots.
    double longestSide = 0;

    /// Begins anew with an empty list.
    async::Task<void> startCapture();

    /// Ends the sampling and gives the pictures, JPEG, oldest first. A picture still being taken is left out.
    async::Task<std::vector<QByteArray>> stopCapture();

 private:
    async::Task<void> sample();
    async::Task<std::optional<QByteArray>> takeFrame();
    double widestFor(const platform::Image& image) const;
    void keep(QByteArray frame);

    platform::Platform& platform_;
    capture::Screenshots& screenshots_;
    std::chrono::nanoseconds frameInterval_;
    std::size_t maxFrames_;
    std::vector<QByteArray> frames_;
    std::optional<async::TaskHandle> captureTask_;
    bool isCapturing_ = false;
    async::TaskScope tasks_;
};

}  // namespace tavrelon::media
