#pragma once

#include <QImage>
#include <expected>
#include <functional>

#include "async/main_loop.h"
#include "desktop/linux/process/thread_serial_queue.h"
#include "platform/screen_capture.h"

namespace tavrelon::desktop {

/// A thread on which pictures are taken, one after the other. Its operations are for the main thread.
class PictureQueue {
 public:
    using Taken = std::expected<QImage, platform::CaptureError>;

    /// The loop must outlive this object.
    explicit PictureQueue(async::MainLoop& loop) : loop_(loop) {}

    /// `take` runs on the thread, unless nobody waits for the picture any more. It gives 32 bits for each pixel,
    /// opaque.
    async::Task<std::expected<platform::Image, platform::CaptureError>> picture(std::function<Taken()> take);

    /// Something else to be done between two pictures.
    void post(platform::SerialQueue::Block block) { queue_.post(std::move(block)); }

 private:
    async::MainLoop& loop_;
    ThreadSerialQueue queue_{QStringLiteral("pictures")};
};

}  // namespace tavrelon::desktop
