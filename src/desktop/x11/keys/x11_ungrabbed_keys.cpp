#include "desktop/x11/keys/x11_ungrabbed_keys.h"

#include <xcb/xinput.h>

#include <algorithm>

namespace tavrelon::desktop {

namespace {

/// How long a stroke may wait, on however busy a machine, until somebody asks for it.
constexpr std::int32_t keptMilliseconds = 10'000;

/// The server's clock starts anew every 49 days.
std::int32_t millisecondsFrom(std::uint32_t earlier, std::uint32_t later) {
    return static_cast<std::int32_t>(later - earlier);
}

void forgetOld(std::deque<KeyStroke>& strokes, std::uint32_t now) {
    while (!strokes.empty() && millisecondsFrom(strokes.front().time, now) > keptMilliseconds)
        strokes.pop_front();
}

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
        const bool isPress = key.event_type == XCB_INPUT_RAW_KEY_PRESS;
        if ((event->response_type & 0x7F) == XCB_GE_GENERIC && key.extension == connection_->inputOpcode() &&
            (isPress || key.event_type == XCB_INPUT_RAW_KEY_RELEASE))
            strokes_.push_back({key.sourceid, static_cast<KeyCode>(key.detail),
                                isPress ? KeyAction::Press : KeyAction::Release, key.time});
    }
    if (!strokes_.empty())
        forgetOld(strokes_, strokes_.back().time);
}

std::vector<KeyStroke> X11UngrabbedKeys::upTo(const KeyMoment& moment) {
    // Once the server has answered, its notice of every earlier key is here.
    connection_->sync();
    drain();
    const auto later = std::ranges::find_if(
        strokes_, [&](const KeyStroke& stroke) { return millisecondsFrom(moment.time, stroke.time) > 0; });
    const auto isIt = [&](const KeyStroke& stroke) {
        return stroke.code == moment.code && stroke.action == moment.action;
    };
    auto struck = std::find_if(strokes_.begin(), later,
                               [&](const KeyStroke& stroke) { return isIt(stroke) && stroke.time == moment.time; });
    if (struck == later)  // some notices are given the time of their sending
        struck = std::find_if(strokes_.begin(), later, isIt);
    const auto end = struck == later ? later : std::next(struck);
    std::vector<KeyStroke> fresh(strokes_.begin(), end);
    strokes_.erase(strokes_.begin(), end);
    given_.insert(given_.end(), fresh.begin(), fresh.end());
    forgetOld(given_, moment.time);
    return fresh;
}

bool X11UngrabbedKeys::had(KeyCode code, std::uint32_t time) {
    const auto found = std::ranges::find_if(
        given_, [&](const KeyStroke& stroke) { return stroke.code == code && stroke.time == time; });
    if (found == given_.end())
        return false;
    given_.erase(given_.begin(), std::next(found));
    return true;
}

}  // namespace tavrelon::desktop
