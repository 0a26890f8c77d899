#pragma once

#include <xcb/xcb.h>

#include <chrono>

#include "desktop/x11/connection/x11_connection.h"

namespace tavrelon::desktop {

using XDeadline = std::chrono::steady_clock::time_point;

/// Waits for the answer to a request until the deadline, and gives it back for `free`; null when it did not come in
/// time or was an error. A server that somebody holds costs no more than that.
void* awaitXReply(xcb_connection_t* connection, unsigned int sequence, XDeadline deadline);

template <typename T>
XPointer<T> awaitXReply(xcb_connection_t* connection, unsigned int sequence, XDeadline deadline) {
    return XPointer<T>(static_cast<T*>(awaitXReply(connection, sequence, deadline)));
}

}  // namespace tavrelon::desktop
