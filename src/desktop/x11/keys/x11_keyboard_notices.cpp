#include "desktop/x11/keys/x11_keyboard_notices.h"

// The C header has a field named like a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace tavrelon::desktop {

void watchKeyboardMap(X11Connection& connection) {
    constexpr auto events =
        static_cast<std::uint16_t>(XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY);
    constexpr std::uint16_t everyPart = 0xFF;
    xcb_xkb_select_events(connection.get(), XCB_XKB_ID_USE_CORE_KBD, events, 0, events, everyPart, everyPart, nullptr);
    connection.flush();
}

void watchKeyboardState(X11Connection& connection) {
    xcb_xkb_select_events_details_t details{};
    details.affectState = details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE | XCB_XKB_STATE_PART_MODIFIER_BASE;
    xcb_xkb_select_events_aux(connection.get(), XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0,
                              &details);
    connection.flush();
}

bool isKeyboardMapNotice(const xcb_generic_event_t& event) {
    return event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY;
}

std::optional<KeyboardState> keyboardState(const xcb_generic_event_t& event) {
    if (event.pad0 != XCB_XKB_STATE_NOTIFY)
        return std::nullopt;
    const auto& notice = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    const bool isPress = notice.eventType == XCB_KEY_PRESS;
    return KeyboardState{
        notice.baseMods, notice.group, {notice.time, notice.keycode, isPress ? KeyAction::Press : KeyAction::Release}};
}

namespace {

XPointer<xcb_xkb_get_state_reply_t> stateNow(X11Connection& connection) {
    return XPointer<xcb_xkb_get_state_reply_t>(xcb_xkb_get_state_reply(
        connection.get(), xcb_xkb_get_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD), nullptr));
}

}  // namespace

unsigned keyboardGroup(X11Connection& connection) {
    const auto state = stateNow(connection);
    return state ? state->group : 0;
}

StickyModifiers stickyModifiers(X11Connection& connection) {
    const auto state = stateNow(connection);
    return state ? StickyModifiers{state->lockedMods, state->latchedMods} : StickyModifiers();
}

}  // namespace tavrelon::desktop
