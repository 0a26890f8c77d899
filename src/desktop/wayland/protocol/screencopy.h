#pragma once

#include <wayland-client-core.h>

#include <cstdint>

struct wl_buffer;
struct wl_output;

/// The protocol wlr_screencopy_unstable_v1 in its first version: what an output shows, copied into shared memory. The
/// thread of its connection.
namespace tavrelon::desktop::screencopy {

struct Manager;
struct Frame;

extern const wl_interface managerInterface;

struct FrameListener {
    /// What the memory must be like; `format` is one of `wl_shm_format`, `stride` in bytes.
    void (*buffer)(void* data, Frame* frame, std::uint32_t format, std::uint32_t width, std::uint32_t height,
                   std::uint32_t stride);
    void (*flags)(void* data, Frame* frame, std::uint32_t flags);
    void (*ready)(void* data, Frame* frame, std::uint32_t secondsHigh, std::uint32_t secondsLow,
                  std::uint32_t nanoseconds);
    void (*failed)(void* data, Frame* frame);
};
/// Among the flags: the first row is the lowest.
inline constexpr std::uint32_t isUpsideDown = 1;

/// Of a part of the output, in its logical pixels, with the pointer in it.
Frame* captureRegion(Manager* manager, wl_output* output, int x, int y, int width, int height,
                     const FrameListener& listener, void* data);
/// Once `buffer` has told what it must be like.
void copy(Frame* frame, wl_buffer* buffer);

}  // namespace tavrelon::desktop::screencopy
