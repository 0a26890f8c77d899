#include "support/key_window.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

namespace tavrelon::testing {

KeyWindow::KeyWindow() : connection_(xcb_connect(nullptr, nullptr)), window_(xcb_generate_id(connection_)) {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    root_ = screen->root;
    const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, root_, 20, 20, 300, 200, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_map_window(connection_, window_);
    focus();
}

KeyWindow::~KeyWindow() {
    xcb_disconnect(connection_);
}

void KeyWindow::focus() {
    // Asked for again and again: the window manager may just be about to show the window, or to focus another one.
    const bool focused = spinUntil([this] {
        xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window_, XCB_CURRENT_TIME);
        auto* reply = xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr);
        const bool isOurs = reply && reply->focus == window_;
        std::free(reply);
        return isOurs;
    });
    if (!focused)
        throw std::runtime_error("the window got no focus");
}

bool KeyWindow::holdKeyboard() {
    auto* reply = xcb_grab_keyboard_reply(
        connection_,
        xcb_grab_keyboard(connection_, 0, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr);
    const bool held = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    std::free(reply);
    return held;
}

void KeyWindow::letGoOfKeyboard() {
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

void KeyWindow::holdCombination(place::Code code, unsigned modifiers) {
    xcb_grab_key(connection_, 0, root_, static_cast<std::uint16_t>(modifiers), code, XCB_GRAB_MODE_ASYNC,
                 XCB_GRAB_MODE_ASYNC);
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void KeyWindow::letGoOfCombination(place::Code code, unsigned modifiers) {
    xcb_ungrab_key(connection_, code, root_, static_cast<std::uint16_t>(modifiers));
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void KeyWindow::pump() {
    while (auto* event = xcb_poll_for_event(connection_)) {
        const auto type = event->response_type & 0x7F;
        const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event);
        if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE)
            strokes_.push_back({key->detail, type == XCB_KEY_PRESS, key->state});
        std::free(event);
    }
}

const std::vector<KeyWindow::Stroke>& KeyWindow::strokes() {
    pump();
    return strokes_;
}

std::vector<place::Code> KeyWindow::presses() {
    constexpr std::array modifiers{place::leftControl, place::leftShift, place::leftAlt, place::leftSuper,
                                   place::capsLock,    place::numLock,   place::altGr};
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

bool spinUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

}  // namespace tavrelon::testing
