#include "desktop/x11/keys/x11_grab_window.h"

#include <xcb/xinput.h>

#include <string_view>
#include <utility>

namespace tavrelon::desktop {

namespace {

constexpr std::string_view activeWindowName = "_NET_ACTIVE_WINDOW";

}  // namespace

X11GrabWindow::X11GrabWindow(X11Connection& connection, DeviceId masterKeyboard)
    : connection_(connection), master_(masterKeyboard) {
    const XPointer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection.get(), xcb_intern_atom(connection.get(), 0, activeWindowName.size(), activeWindowName.data()),
        nullptr));
    activeWindow_ = atom ? atom->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    watch(connection.root());
    followFocus();
}

X11GrabWindow::~X11GrabWindow() {
    release(window_, withLocks(grabs_, numLock_));
    connection_.sync();
}

void X11GrabWindow::watch(xcb_window_t window) const {
    const std::uint32_t events = XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                 (window == connection_.root() ? XCB_EVENT_MASK_PROPERTY_CHANGE : 0U);
    xcb_change_window_attributes(connection_.get(), window, XCB_CW_EVENT_MASK, &events);
}

xcb_window_t X11GrabWindow::focus() const {
    const XPointer<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()), nullptr));
    const bool isWindow = reply && reply->focus > XCB_INPUT_FOCUS_POINTER_ROOT;
    return isWindow ? reply->focus : connection_.root();
}

bool X11GrabWindow::concerns(const xcb_generic_event_t& event) const {
    switch (event.response_type & 0x7F) {
        case XCB_FOCUS_IN:
        case XCB_FOCUS_OUT: {
            const auto mode = reinterpret_cast<const xcb_focus_in_event_t&>(event).mode;
            return mode != XCB_NOTIFY_MODE_GRAB && mode != XCB_NOTIFY_MODE_UNGRAB;
        }
        case XCB_UNMAP_NOTIFY:
        case XCB_DESTROY_NOTIFY:
            return true;
        case XCB_PROPERTY_NOTIFY:
            return reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == activeWindow_;
        default:
            return false;
    }
}

void X11GrabWindow::followFocus() {
    const auto window = focus();
    if (window == window_)
        return;
    watch(window);
    refused_ = grab(window, grabs_);
    const auto left = std::exchange(window_, window);
    if (left == XCB_NONE)
        return;
    release(left, withLocks(grabs_, numLock_));
    if (left != connection_.root()) {
        const std::uint32_t nothing = XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(connection_.get(), left, XCB_CW_EVENT_MASK, &nothing);
    }
    connection_.flush();
}

void X11GrabWindow::setGrabs(GrabSet grabs, ModifierMask numLock) {
    const auto before = withLocks(grabs_, numLock_);
    const auto wasNumLock = std::exchange(numLock_, numLock);
    // Another Num Lock makes other combinations of every key, so all are asked for again.
    const auto asked = numLock == wasNumLock ? changeOf(grabs_, grabs).added : grabs;
    grabs_ = std::move(grabs);
    std::erase_if(refused_, [&](const KeyGrab& key) { return asked.contains(key) || !grabs_.contains(key); });
    refused_.merge(grab(window_, asked));
    release(window_, changeOf(before, withLocks(grabs_, numLock_)).removed);
    connection_.flush();
}

GrabSet X11GrabWindow::grab(xcb_window_t window, const GrabSet& grabs) const {
    constexpr std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
    std::vector<std::pair<KeyGrab, xcb_input_xi_passive_grab_device_cookie_t>> asked;
    asked.reserve(grabs.size());
    for (const auto& key : grabs) {
        const auto modifiers = withLocks(key.modifiers, numLock_);
        asked.emplace_back(key, xcb_input_xi_passive_grab_device(
                                    connection_.get(), XCB_CURRENT_TIME, window, XCB_NONE, key.code, master_,
                                    modifiers.size(), 1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                    XCB_INPUT_GRAB_MODE_22_ASYNC, 0, &events, modifiers.data()));
    }
    GrabSet refused;
    for (const auto& [key, cookie] : asked) {
        // A window that is gone answers with an error, which is no refusal: the focus moves on in a moment.
        const XPointer<xcb_input_xi_passive_grab_device_reply_t> reply(
            xcb_input_xi_passive_grab_device_reply(connection_.get(), cookie, nullptr));
        if (reply && reply->num_modifiers > 0)
            refused.insert(key);
    }
    return refused;
}

void X11GrabWindow::release(xcb_window_t window, const GrabSet& combinations) const {
    for (const auto& [code, combination] : combinations) {
        const std::uint32_t modifiers = combination;
        xcb_input_xi_passive_ungrab_device(connection_.get(), window, code, master_, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                                           &modifiers);
    }
}

void X11GrabWindow::letGo() const {
    xcb_input_xi_ungrab_device(connection_.get(), XCB_CURRENT_TIME, master_);
    connection_.flush();
}

xcb_window_t X11GrabWindow::activeWindow() const {
    const XPointer<xcb_get_property_reply_t> property(xcb_get_property_reply(
        connection_.get(),
        xcb_get_property(connection_.get(), 0, connection_.root(), activeWindow_, XCB_ATOM_WINDOW, 0, 1), nullptr));
    if (!property || property->type != XCB_ATOM_WINDOW || xcb_get_property_value_length(property.get()) < 4)
        return window_ == connection_.root() ? static_cast<xcb_window_t>(XCB_NONE) : window_;
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(property.get()));
}

bool X11GrabWindow::areOfOneClient(xcb_window_t a, xcb_window_t b) const {
    // The server gives each client a range of numbers for all that it makes.
    return ((a ^ b) & ~xcb_get_setup(connection_.get())->resource_id_mask) == 0;
}

GrabSet heldElsewhere(X11Connection& connection, const GrabSet& grabs) {
    GrabSet held;
    for (const auto& key : grabs) {
        const XPointer<xcb_generic_error_t> error(xcb_request_check(
            connection.get(), xcb_grab_key_checked(connection.get(), 1, connection.root(), key.modifiers, key.code,
                                                   XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
        if (!error)
            xcb_ungrab_key(connection.get(), key.code, connection.root(), key.modifiers);
        else if (error->error_code == XCB_ACCESS)
            held.insert(key);
    }
    connection.sync();  // or the last one stays grabbed until something else is sent
    return held;
}

}  // namespace tavrelon::desktop
