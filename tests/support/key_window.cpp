#include "support/key_window.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "desktop/x11/connection/x11_connection.h"
#include "support/waiting.h"

namespace tavrelon::testing {

using desktop::XPointer;

KeyWindow::KeyWindow() : connection_(xcb_connect(nullptr, nullptr)), window_(xcb_generate_id(connection_)) {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    root_ = screen->root;
    const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, root_, 20, 20, 300, 200, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    focus();
}

KeyWindow::~KeyWindow() {
    xcb_disconnect(connection_);
}

void KeyWindow::focus() {
    // Asked for again now and then: a window manager that is just starting forgets what it was asked for.
    int round = 0;
    const bool focused = eventually(
        [&] {
            if (round % 50 == 0)
                xcb_map_window(connection_, window_);
            if (round++ % 5 == 0)
                xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window_, XCB_CURRENT_TIME);
            const XPointer<xcb_get_input_focus_reply_t> focus(
                xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
            return focus && focus->focus == window_ && isNamedByWindowManager();
        },
        std::chrono::seconds(60));  // it may still be busy with keyboard maps that an earlier test went through
    if (!focused)
        throw std::runtime_error("the window got no focus");
}

bool KeyWindow::isNamedByWindowManager() const {
    const auto windowIn = [this](std::string_view name) {
        const auto atom = XPointer<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        const auto found = XPointer<xcb_get_property_reply_t>(xcb_get_property_reply(
            connection_, xcb_get_property(connection_, 0, root_, atom->atom, XCB_ATOM_WINDOW, 0, 1), nullptr));
        return found && found->length > 0 ? *static_cast<xcb_window_t*>(xcb_get_property_value(found.get())) : 0;
    };
    return windowIn("_NET_SUPPORTING_WM_CHECK") == 0 || windowIn("_NET_ACTIVE_WINDOW") == window_;
}

bool KeyWindow::holdKeyboard() {
    const XPointer<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
        connection_,
        xcb_grab_keyboard(connection_, 0, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void KeyWindow::letGoOfKeyboard() {
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

void KeyWindow::holdCombination(place::Code code, unsigned modifiers) {
    const XPointer<xcb_generic_error_t> error(xcb_request_check(
        connection_, xcb_grab_key_checked(connection_, 0, root_, static_cast<std::uint16_t>(modifiers), code,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    if (error)
        throw std::runtime_error("the combination is held already");
}

void KeyWindow::pump() {
    while (const XPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        const auto type = event->response_type & 0x7F;
        const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event.get());
        if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE)
            strokes_.push_back({key->detail, type == XCB_KEY_PRESS, key->state});
    }
}

const std::vector<KeyWindow::Stroke>& KeyWindow::strokes() {
    pump();
    return strokes_;
}

std::vector<place::Code> KeyWindow::presses() {
    constexpr std::array modifiers{place::leftControl, place::leftShift, place::leftAlt,
                                   place::leftSuper,   place::capsLock,  place::numLock};
    std::vector<place::Code> codes;
    for (const auto& stroke : strokes())
        if (stroke.isPress && std::ranges::find(modifiers, stroke.code) == modifiers.end())
            codes.push_back(stroke.code);
    return codes;
}

bool KeyWindow::got(place::Code code) {
    return std::ranges::count(presses(), code) > 0;
}

void KeyWindow::clear() {
    pump();
    strokes_.clear();
}

int KeyWindow::stateOf(place::Code code) {
    int state = -1;
    for (const auto& stroke : strokes())
        if (stroke.isPress && stroke.code == code)
            state = static_cast<int>(stroke.state);
    return state;
}

}  // namespace tavrelon::testing
