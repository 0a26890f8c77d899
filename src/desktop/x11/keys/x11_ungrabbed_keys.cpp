#include "desktop/x11/keys/x11_ungrabbed_keys.h"

#include <xcb/xinput.h>

#include <algorithm>

namespace tavrelon::desktop {

namespace {

/// How long a stroke may wait, on however busy a machine, until somebody asks for it.
constexpr std::uint32_t keptMilliseconds = 10'000;

}  // namespace

std::expected<std::unique_ptr<X11UngrabbedKeys>, QString> X11UngrabbedKeys::open() {
    auto connection = X11Connection::open(InputVersion::TwoZero);
    if (!connection)
        return std::unexpected(connection.error());
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                      XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE};
    xcb_input_xi_select_events((*connection)->get(), (*connection)->root(), 1, &selection.head);
    (*connection)->flush();
    return std::unique_ptr<X11UngrabbedKeys>(new X11UngrabbedKeys(*std::move(connection)));
}

void X11UngrabbedKeys::drain() {
    while (const XPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
        const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(*event);
        if ((event->response_type & 0x7F) == XCB_GE_GENERIC && key.extension == connection_->inputOpcode() &&
            (key.event_type == XCB_INPUT_RAW_KEY_PRESS || key.event_type == XCB_INPUT_RAW_KEY_RELEASE))
            strokes_.push_back({static_cast<KeyCode>(key.detail), key.time});
    }
    while (!strokes_.empty() && strokes_.back().time - strokes_.front().time > keptMilliseconds)
        strokes_.pop_front();
}

bool X11UngrabbedKeys::had(KeyCode code, std::uint32_t time) {
    // Once the server has answered, its notice of every earlier key is here.
    connection_->sync();
    drain();
    const auto found = std::ranges::find(strokes_, Stroke{code, time});
    if (found == strokes_.end())
        return false;
    strokes_.erase(strokes_.begin(), std::next(found));  // they are asked for in their order
    return true;
}

}  // namespace tavrelon::desktop
