#pragma once

#include <memory>

#include "async/main_loop.h"
#include "desktop/x11/x11_event_tap_offer.h"
#include "desktop/x11/x11_thread_wake.h"

namespace tavrelon::desktop {

/// The way from the tap's thread to the handler on the main thread. Keys arrive in the order in which they were sent.
class TapDelivery : public std::enable_shared_from_this<TapDelivery> {
 public:
    TapDelivery(async::MainLoop& loop, platform::EventTap::Handler handler, std::shared_ptr<X11ThreadWake> wake)
        : loop_(loop), handler_(std::move(handler)), wake_(std::move(wake)) {}

    /// Sends a key that goes its way whatever the verdict. Any thread.
    void send(platform::KeyEvent event);

    /// Sends a key that waits for the verdict; `wake` is signalled once it is there. Any thread.
    std::shared_ptr<KeyOffer> offer(platform::KeyEvent event);

    /// No call of the handler follows. Main thread, also inside the handler.
    void close() { open_ = false; }

 private:
    async::MainLoop& loop_;
    platform::EventTap::Handler handler_;
    std::shared_ptr<X11ThreadWake> wake_;
    bool open_ = true;
};

}  // namespace tavrelon::desktop
