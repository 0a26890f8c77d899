#pragma once

#include <xcb/xcb.h>

namespace tavrelon::desktop {

/// Whether an input method's own window stands on the screen, with the letters and candidates of a half-composed word.
/// False where the server does not answer in time. The thread that uses the connection.
bool showsComposition(xcb_connection_t* connection, xcb_window_t root);

}  // namespace tavrelon::desktop
