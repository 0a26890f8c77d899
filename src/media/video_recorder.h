#pragma once

#include <QByteArray>
#include <vector>

#include "async/task.h"

namespace tavrelon::media {

/// Collects pictures of the focused window. Main thread; nothing fails, a frame that could not be taken is missing.
class VideoRecorder {
 public:
    virtual ~VideoRecorder() = default;
    virtual async::Task<void> startCapture() = 0;

    /// Ends the collection and hands its frames over; empty when none runs.
    virtual async::Task<std::vector<QByteArray>> stopCapture() = 0;
};

}  // namespace tavrelon::media
