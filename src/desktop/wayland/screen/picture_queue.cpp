#include "desktop/wayland/screen/picture_queue.h"

#include "async/waits.h"

namespace tavrelon::desktop {

using Picture = std::expected<platform::Image, platform::CaptureError>;

namespace {

platform::Image imageOf(QImage picture) {
    const auto shared = std::make_shared<const QImage>(std::move(picture));
    return {shared->width(), shared->height(),
            QByteArray::fromRawData(reinterpret_cast<const char*>(shared->constBits()), shared->sizeInBytes()), shared};
}

}  // namespace

async::Task<Picture> PictureQueue::picture(std::function<Taken()> take) {
    // The queue skips the work once this is gone, which a cancellation sees to.
    co_return co_await async::fromCallback<Picture>(loop_, [this, &take](auto resolver) {
        auto wanted = std::make_shared<bool>(true);
        queue_.post([resolver, take, stillWanted = std::weak_ptr(wanted)]() mutable {
            if (stillWanted.expired())
                return;
            auto taken = take();
            resolver.resolve(taken ? Picture(imageOf(*std::move(taken))) : std::unexpected(taken.error()));
        });
        return wanted;
    });
}

}  // namespace tavrelon::desktop
