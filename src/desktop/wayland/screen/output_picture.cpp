#include "desktop/wayland/screen/output_picture.h"

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "desktop/wayland/protocol/requests.h"
#include "desktop/wayland/protocol/screencopy.h"

namespace tavrelon::desktop {

using platform::CaptureError;

namespace {

using Clock = std::chrono::steady_clock;

/// Far over any output: what asks for more is mistaken.
constexpr std::uint32_t mostBytes = 512U << 20U;
/// The first version in which an output tells its name.
constexpr std::uint32_t outputVersion = 4;

std::unexpected<CaptureError> error(const char* text) {
    return std::unexpected(CaptureError{QString::fromUtf8(text)});
}

struct PixelMemory {
    std::uint32_t format = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t stride = 0;

    std::size_t size() const { return std::size_t{stride} * height; }
};

/// Little-endian, as all that Wayland has.
std::optional<QImage::Format> imageFormat(std::uint32_t format) {
    switch (format) {
        case WL_SHM_FORMAT_ARGB8888:
        case WL_SHM_FORMAT_XRGB8888:
            return QImage::Format_RGB32;
        case WL_SHM_FORMAT_ABGR8888:
        case WL_SHM_FORMAT_XBGR8888:
            return QImage::Format_RGBX8888;
        case WL_SHM_FORMAT_ARGB2101010:
        case WL_SHM_FORMAT_XRGB2101010:
            return QImage::Format_RGB30;
        case WL_SHM_FORMAT_ABGR2101010:
        case WL_SHM_FORMAT_XBGR2101010:
            return QImage::Format_BGR30;
        default:
            return std::nullopt;
    }
}

/// Memory that the compositor writes to.
class SharedPixels {
 public:
    explicit SharedPixels(std::size_t size) : size_(size), file_(::memfd_create("picture", MFD_CLOEXEC)) {
        if (file_ < 0 || ::ftruncate(file_, static_cast<off_t>(size)) != 0)
            return;
        auto* const mapped = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
        if (mapped != MAP_FAILED)
            bytes_ = static_cast<uchar*>(mapped);
    }
    SharedPixels(const SharedPixels&) = delete;
    SharedPixels& operator=(const SharedPixels&) = delete;
    ~SharedPixels() {
        if (bytes_)
            ::munmap(bytes_, size_);
        if (file_ >= 0)
            ::close(file_);
    }

    int file() const { return file_; }
    const uchar* bytes() const { return bytes_; }  ///< null where there is no memory

 private:
    std::size_t size_;
    int file_;
    uchar* bytes_ = nullptr;
};

/// One picture, from the connection to its end. Every proxy that it makes is the display's, and ends with it.
class Shot {
 public:
    explicit Shot(Clock::time_point until) : until_(until), display_(wl_display_connect(nullptr)) {}
    Shot(const Shot&) = delete;
    Shot& operator=(const Shot&) = delete;
    ~Shot() {
        for (auto* proxy : proxies_)
            wl_proxy_destroy(proxy);
        if (display_)
            wl_display_disconnect(display_);
    }

    std::expected<QImage, CaptureError> take(const OutputRegion& region);

 private:
    struct Output {
        wl_output* proxy = nullptr;
        QString name;
    };

    template <typename Object>
    Object* keep(Object* object) {
        if (object)
            proxies_.push_back(proxyOf(object));
        return object;
    }
    void findGlobals();
    void bind(wl_registry* registry, std::uint32_t name, std::string_view interface, std::uint32_t version);
    bool settle();
    bool waitFor(const bool& done, const bool& orElse);
    bool turn();
    wl_buffer* bufferOn(const SharedPixels& pixels);
    QImage imageOf(const SharedPixels& pixels, QImage::Format format) const;

    Clock::time_point until_;
    wl_display* display_;
    std::vector<wl_proxy*> proxies_;
    wl_shm* memory_ = nullptr;
    screencopy::Manager* manager_ = nullptr;
    std::vector<std::unique_ptr<Output>> outputs_;  // where listeners point to
    PixelMemory wanted_;
    std::uint32_t flags_ = 0;
    bool isAsked_ = false;
    bool isReady_ = false;
    bool hasFailed_ = false;
};

std::expected<QImage, CaptureError> Shot::take(const OutputRegion& region) {
    if (region.area.isEmpty())
        return error("There is nothing to capture: the area is empty.");
    if (!display_)
        return error("The Wayland compositor cannot be reached.");
    findGlobals();
    // Once for what there is, and once for what that tells of itself.
    if (!settle() || !settle())
        return error("The Wayland compositor does not answer.");
    const auto output = std::ranges::find(outputs_, region.output, [](const auto& each) { return each->name; });
    if (!memory_ || !manager_)
        return error("The Wayland compositor gives no pictures of the screen.");
    if (output == outputs_.end())
        return error("The display is no longer there.");

    static constexpr screencopy::FrameListener listener{
        [](void* data, screencopy::Frame*, std::uint32_t format, std::uint32_t width, std::uint32_t height,
           std::uint32_t stride) {
            auto* self = static_cast<Shot*>(data);
            self->wanted_ = {format, width, height, stride};
            self->isAsked_ = true;
        },
        [](void* data, screencopy::Frame*, std::uint32_t flags) { static_cast<Shot*>(data)->flags_ = flags; },
        [](void* data, screencopy::Frame*, std::uint32_t, std::uint32_t, std::uint32_t) {
            static_cast<Shot*>(data)->isReady_ = true;
        },
        [](void* data, screencopy::Frame*) { static_cast<Shot*>(data)->hasFailed_ = true; }};
    const auto& area = region.area;
    auto* const frame = keep(screencopy::captureRegion(manager_, (*output)->proxy, area.x(), area.y(), area.width(),
                                                       area.height(), listener, this));
    if (!frame || !waitFor(isAsked_, hasFailed_) || hasFailed_)
        return error("The Wayland compositor refuses a picture of this place.");
    const auto format = imageFormat(wanted_.format);
    if (!format || std::uint64_t{wanted_.width} * 4 > wanted_.stride ||
        std::uint64_t{wanted_.stride} * wanted_.height > mostBytes)
        return error("The compositor's pixels are of a kind that is not known.");
    const SharedPixels pixels(wanted_.size());
    if (!pixels.bytes())
        return error("There is no memory for a picture.");
    screencopy::copy(frame, bufferOn(pixels));
    if (!waitFor(isReady_, hasFailed_) || hasFailed_)
        return error("The Wayland compositor did not give the picture; is the display off?");
    return imageOf(pixels, *format);
}

void Shot::findGlobals() {
    static constexpr wl_registry_listener listener{
        [](void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
            static_cast<Shot*>(data)->bind(registry, name, interface, version);
        },
        [](void*, wl_registry*, std::uint32_t) {}};
    if (auto* registry = keep(wl_display_get_registry(display_)))
        wl_registry_add_listener(registry, &listener, this);
}

void Shot::bind(wl_registry* registry, std::uint32_t name, std::string_view interface, std::uint32_t version) {
    const auto bound = [&]<typename T>(T*, const wl_interface& wanted, std::uint32_t known) {
        return keep(static_cast<T*>(wl_registry_bind(registry, name, &wanted, known)));
    };
    if (interface == wl_shm_interface.name) {
        memory_ = bound(memory_, wl_shm_interface, 1);
    } else if (interface == screencopy::managerInterface.name) {
        manager_ = bound(manager_, screencopy::managerInterface, 1);
    } else if (interface == wl_output_interface.name && version >= outputVersion) {
        static constexpr wl_output_listener listener{
            [](void*, wl_output*, std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::int32_t, const char*,
               const char*, std::int32_t) {},
            [](void*, wl_output*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t) {},
            [](void*, wl_output*) {},
            [](void*, wl_output*, std::int32_t) {},
            [](void* data, wl_output*, const char* told) {
                static_cast<Output*>(data)->name = QString::fromUtf8(told);
            },
            [](void*, wl_output*, const char*) {}};
        auto output = std::make_unique<Output>();
        output->proxy = bound(output->proxy, wl_output_interface, outputVersion);
        if (!output->proxy)
            return;
        wl_output_add_listener(output->proxy, &listener, output.get());
        outputs_.push_back(std::move(output));
    }
}

wl_buffer* Shot::bufferOn(const SharedPixels& pixels) {
    auto* pool = keep(wl_shm_create_pool(memory_, pixels.file(), static_cast<std::int32_t>(wanted_.size())));
    return keep(wl_shm_pool_create_buffer(pool, 0, static_cast<std::int32_t>(wanted_.width),
                                          static_cast<std::int32_t>(wanted_.height),
                                          static_cast<std::int32_t>(wanted_.stride), wanted_.format));
}

QImage Shot::imageOf(const SharedPixels& pixels, QImage::Format format) const {
    const QImage shown(pixels.bytes(), static_cast<int>(wanted_.width), static_cast<int>(wanted_.height),
                       static_cast<qsizetype>(wanted_.stride), format);
    // A copy in any case: the memory ends with this.
    const auto upright = (flags_ & screencopy::isUpsideDown) != 0 ? shown.mirrored() : shown.copy();
    return upright.convertToFormat(QImage::Format_RGB32);
}

bool Shot::settle() {
    static constexpr wl_callback_listener listener{
        [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
    bool isDone = false;
    auto* callback = wl_display_sync(display_);
    if (!callback)
        return false;
    wl_callback_add_listener(callback, &listener, &isDone);
    const bool isSettled = waitFor(isDone, isDone);
    wl_callback_destroy(callback);
    return isSettled;
}

/// Until one of the two has become true; false when it does not in time.
bool Shot::waitFor(const bool& done, const bool& orElse) {
    while (!done && !orElse)
        if (!turn())
            return false;
    return true;
}

/// Sends what is to be sent, waits for an answer and deals with it. All that one picture sends fits into the socket.
bool Shot::turn() {
    while (wl_display_prepare_read(display_) != 0)
        if (wl_display_dispatch_pending(display_) < 0)
            return false;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until_ - Clock::now()).count();
    pollfd readable{wl_display_get_fd(display_), POLLIN, 0};
    if (wl_display_flush(display_) < 0 || left <= 0 || ::poll(&readable, 1, static_cast<int>(left)) <= 0) {
        wl_display_cancel_read(display_);
        return false;
    }
    return wl_display_read_events(display_) == 0 && wl_display_dispatch_pending(display_) >= 0;
}

}  // namespace

std::expected<QImage, CaptureError> takePicture(const OutputRegion& region, Clock::time_point until) {
    return Shot(until).take(region);
}

}  // namespace tavrelon::desktop
