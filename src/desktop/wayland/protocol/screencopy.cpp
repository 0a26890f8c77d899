#include "desktop/wayland/protocol/screencopy.h"

#include <wayland-client-protocol.h>

#include "desktop/wayland/protocol/requests.h"

namespace tavrelon::desktop::screencopy {

namespace {

// What is sent, in the order by which the protocol numbers it.
enum ManagerRequest : std::uint32_t { captureOutputRequest, captureRegionRequest, destroyManager };
enum FrameRequest : std::uint32_t { copyRequest, destroyFrame };

const wl_interface* noObjects[] = {nullptr, nullptr, nullptr, nullptr};

const wl_interface* aBuffer[] = {&wl_buffer_interface};
const wl_message frameRequests[] = {{"copy", "o", aBuffer}, {"destroy", "", noObjects}};
const wl_message frameEvents[] = {
    {"buffer", "uuuu", noObjects}, {"flags", "u", noObjects}, {"ready", "uuu", noObjects}, {"failed", "", noObjects}};
const wl_interface frameInterface{"zwlr_screencopy_frame_v1", 1, 2, frameRequests, 4, frameEvents};

const wl_interface* aFrameOfAnOutput[] = {&frameInterface, nullptr, &wl_output_interface, nullptr, nullptr,
                                          nullptr,         nullptr};
const wl_message managerRequests[] = {{"capture_output", "nio", aFrameOfAnOutput},
                                      {"capture_output_region", "nioiiii", aFrameOfAnOutput},
                                      {"destroy", "", noObjects}};

}  // namespace

const wl_interface managerInterface{"zwlr_screencopy_manager_v1", 1, 3, managerRequests, 0, nullptr};

Frame* captureRegion(Manager* manager, wl_output* output, int x, int y, int width, int height,
                     const FrameListener& listener, void* data) {
    constexpr int withPointer = 1;
    auto* frame = construct<Frame>(manager, captureRegionRequest, frameInterface, nullptr, withPointer, proxyOf(output),
                                   x, y, width, height);
    if (frame)
        listen(frame, listener, data);
    return frame;
}

void copy(Frame* frame, wl_buffer* buffer) {
    request(frame, copyRequest, proxyOf(buffer));
}

}  // namespace tavrelon::desktop::screencopy
