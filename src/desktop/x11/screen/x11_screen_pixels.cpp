#include "desktop/x11/screen/x11_screen_pixels.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>

#include <atomic>

namespace tavrelon::desktop {

using platform::CaptureError;

namespace {

constexpr std::uint32_t allPlanes = 0xFFFFFFFF;
constexpr std::size_t bytesPerPixel = 4;
/// Grows by this much, so that windows of different sizes do not each need new memory.
constexpr std::size_t sharedStep = std::size_t{4} << 20;

CaptureError error(const char* text) {
    return {QString::fromUtf8(text)};
}

}  // namespace

platform::Image FetchedPicture::image() const {
    const auto bytes = qsizetype{width} * height * qsizetype{bytesPerPixel};
    return {width, height, QByteArray::fromRawData(reinterpret_cast<const char*>(pixels.get()), bytes), pixels};
}

ScreenPixels::ScreenPixels(xcb_connection_t* connection) : connection_(connection) {
    const auto* extension = xcb_get_extension_data(connection_, &xcb_shm_id);
    canShare_ = extension && extension->present;
}

ScreenPixels::~ScreenPixels() {
    endSharing();
}

void ScreenPixels::endSharing() {
    if (segment_ != XCB_NONE)
        xcb_shm_detach(connection_, segment_);
    xcb_flush(connection_);
    segment_ = XCB_NONE;
    memory_.reset();
    size_ = 0;
}

bool ScreenPixels::share(std::size_t bytes, XDeadline deadline) {
    const bool isFree = memory_.use_count() <= 1;
    std::atomic_thread_fence(std::memory_order_acquire);  // whoever had the picture has done with it
    if (!canShare_ || (isFree && size_ >= bytes))
        return canShare_;
    endSharing();
    canShare_ = false;  // until all has gone well
    const auto size = (bytes + sharedStep - 1) / sharedStep * sharedStep;
    const int identifier = ::shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
    if (identifier < 0)
        return false;
    void* const memory = ::shmat(identifier, nullptr, 0);
    const auto segment = xcb_generate_id(connection_);
    // A server on another machine refuses; the question comes back behind the refusal.
    const auto attached = xcb_shm_attach_checked(connection_, segment, static_cast<std::uint32_t>(identifier), 0);
    const auto probe =
        awaitXReply<xcb_get_input_focus_reply_t>(connection_, xcb_get_input_focus(connection_).sequence, deadline);
    ::shmctl(identifier, IPC_RMID, nullptr);  // it lives on for those who are attached
    if (!probe)
        xcb_discard_reply(connection_, attached.sequence);
    const XPointer<xcb_generic_error_t> refusal(probe ? xcb_request_check(connection_, attached) : nullptr);
    if (memory == reinterpret_cast<void*>(-1))
        return false;
    memory_ = {static_cast<unsigned char*>(memory), ::shmdt};
    if (!probe || refusal) {
        endSharing();
        return false;
    }
    segment_ = segment;
    size_ = size;
    canShare_ = true;
    return true;
}

bool ScreenPixels::fetchShared(xcb_drawable_t drawable, const ScreenArea& area, std::size_t bytes, XDeadline deadline) {
    const auto asked =
        xcb_shm_get_image(connection_, drawable, static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                          static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height), allPlanes,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, segment_, 0);
    const auto reply = awaitXReply<xcb_shm_get_image_reply_t>(connection_, asked.sequence, deadline);
    return reply && reply->size == bytes && (reply->depth == 24 || reply->depth == 32);
}

FetchOutcome ScreenPixels::fetch(xcb_drawable_t drawable, const ScreenArea& area, XDeadline deadline) {
    if (area.isEmpty())
        return std::unexpected(error("There is nothing to capture: the area is empty."));
    if (xcb_get_setup(connection_)->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
        return std::unexpected(error("The X server's order of bytes is not known."));
    const auto bytes = static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height) * bytesPerPixel;
    if (share(bytes, deadline) && fetchShared(drawable, area, bytes, deadline))
        return FetchedPicture{area.width, area.height, memory_};
    const auto asked =
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(area.x),
                      static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                      static_cast<std::uint16_t>(area.height), allPlanes);
    const std::shared_ptr<xcb_get_image_reply_t> reply =
        awaitXReply<xcb_get_image_reply_t>(connection_, asked.sequence, deadline);
    if (!reply)
        return std::unexpected(error("The X server did not give the picture; the window may be gone."));
    const auto length = static_cast<std::size_t>(xcb_get_image_data_length(reply.get()));
    if (length != bytes || (reply->depth != 24 && reply->depth != 32))
        return std::unexpected(error("The X server's pixels are not of 24 or 32 bits."));
    return FetchedPicture{area.width, area.height, {reply, xcb_get_image_data(reply.get())}};
}

}  // namespace tavrelon::desktop
