#include "desktop/x11/connection/x11_reply_wait.h"

#include <poll.h>
#include <xcb/xcbext.h>

#include <cstdlib>

namespace tavrelon::desktop {

void* awaitXReply(xcb_connection_t* connection, unsigned int sequence, XDeadline deadline) {
    xcb_flush(connection);
    for (;;) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(connection, sequence, &reply, &error) != 0) {
            std::free(error);  // a window that no longer exists, mostly: it has nothing to say
            return reply;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd source{.fd = xcb_get_file_descriptor(connection), .events = POLLIN, .revents = 0};
        if (left.count() <= 0 || ::poll(&source, 1, static_cast<int>(left.count())) == 0) {
            xcb_discard_reply(connection, sequence);
            return nullptr;
        }
    }
}

}  // namespace tavrelon::desktop
