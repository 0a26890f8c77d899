#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "async/main_loop.h"
#include "platform/hotkeys.h"
#include "platform/key_observer.h"

namespace tavrelon::desktop {

/// The way of keys from the keyboard's thread to the main thread, in the order of their striking.
class X11KeyDelivery : public std::enable_shared_from_this<X11KeyDelivery> {
 public:
    X11KeyDelivery(async::MainLoop& loop, platform::Hotkeys::Handler handler)
        : loop_(loop), handler_(std::move(handler)) {}

    // The keyboard's thread.

    /// Whether typed keys are wanted: while somebody observes, and behind a hotkey until the main thread came to it,
    /// since it may begin an observation that is to have the very next key.
    bool wantsTypedKeys() const { return wanting_ > 0; }

    /// Whether the keyboards are watched, so that typed keys can be told.
    void setWatching(bool watching) { watching_ = watching; }

    void pressed(const platform::WantedHotkey& hotkey);
    void typed(platform::KeyEvent event);
    void left();

    // The main thread.

    /// Typed keys are told from now on if the keyboards are watched already, else once they are.
    void observe(platform::KeyObserver::Calls calls);
    bool isWatching() const { return watching_; }
    void endObservation();

    /// No call follows, also inside one.
    void close();

 private:
    async::MainLoop& loop_;
    platform::Hotkeys::Handler handler_;
    std::optional<platform::KeyObserver::Calls> observer_;
    std::atomic<int> wanting_ = 0;
    std::atomic<bool> watching_ = false;
};

}  // namespace tavrelon::desktop
