#pragma once

#include "desktop/x11/connection/x11_connection.h"

namespace tavrelon::desktop {

/// Asks for a notice whenever the keyboard map of the session or the layout in force changes.
void watchKeyboardMap(X11Connection& connection);

/// Whether an event of the XKB extension says that the map is another one now.
bool isKeyboardMapNotice(const xcb_generic_event_t& event);

/// Whether an event of the XKB extension says that another layout is in force now.
bool isKeyboardGroupNotice(const xcb_generic_event_t& event);

/// The layout in force on the session's keyboard.
unsigned keyboardGroup(X11Connection& connection);

}  // namespace tavrelon::desktop
