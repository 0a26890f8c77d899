#include "desktop/x11/screen/x11_screen_pixels.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>

#include <atomic>

#include "desktop/x11/screen/x11_pixel_layout.h"

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
    const auto bytes = qsizetype{area.width} * area.height * qsizetype{bytesPerPixel};
    return {area.width, area.height, QByteArray::fromRawData(reinterpret_cast<const char*>(pixels.get()), bytes),
            pixels};
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

std::optional<ScreenPixels::Fetched> ScreenPixels::fetchShared(xcb_drawable_t drawable, const ScreenArea& area,
                                                               XDeadline deadline) {
    const auto asked =
        xcb_shm_get_image(connection_, drawable, static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                          static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height), allPlanes,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, segment_, 0);
    const auto reply = awaitXReply<xcb_shm_get_image_reply_t>(connection_, asked.sequence, deadline);
    if (!reply)
        return std::nullopt;
    return Fetched{memory_, reply->size, reply->depth};
}

std::optional<ScreenPixels::Fetched> ScreenPixels::fetchSent(xcb_drawable_t drawable, const ScreenArea& area,
                                                             XDeadline deadline) {
    const auto asked =
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(area.x),
                      static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                      static_cast<std::uint16_t>(area.height), allPlanes);
    const std::shared_ptr<xcb_get_image_reply_t> reply =
        awaitXReply<xcb_get_image_reply_t>(connection_, asked.sequence, deadline);
    if (!reply)
        return std::nullopt;
    return Fetched{{reply, xcb_get_image_data(reply.get())},
                   static_cast<std::size_t>(xcb_get_image_data_length(reply.get())),
                   reply->depth};
}

FetchOutcome ScreenPixels::fetch(xcb_drawable_t drawable, const ScreenArea& area, XDeadline deadline) {
    if (area.isEmpty())
        return std::unexpected(error("There is nothing to capture: the area is empty."));
    const auto width = static_cast<std::size_t>(area.width), height = static_cast<std::size_t>(area.height);
    std::optional<Fetched> fetched;
    if (share(width * height * bytesPerPixel, deadline))
        fetched = fetchShared(drawable, area, deadline);
    if (!fetched)
        fetched = fetchSent(drawable, area, deadline);
    if (!fetched)
        return std::unexpected(error("The X server did not give the picture; the window may be gone."));
    const auto layout = pixelLayout(connection_, fetched->depth);
    if (!layout || fetched->size != layout->bytesPerRow(width) * height)
        return std::unexpected(error("The X server's pixels are of a kind that is not known."));
    if (layout->isPlain())
        return FetchedPicture{area, fetched->pixels};
    const std::shared_ptr<unsigned char[]> pixels(new unsigned char[width * height * bytesPerPixel]);
    for (std::size_t y = 0; y < height; ++y)
        layout->convertRow(fetched->pixels.get() + y * layout->bytesPerRow(width),
                           pixels.get() + y * width * bytesPerPixel, width);
    return FetchedPicture{area, {pixels, pixels.get()}};
}

}  // namespace tavrelon::desktop
