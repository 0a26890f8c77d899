#pragma once

#include <memory>

#include "async/main_loop.h"
#include "desktop/x11/connection/x11_connection.h"
#include "desktop/x11/keys/x11_key_posts.h"
#include "desktop/x11/keys/x11_keyboard.h"

namespace tavrelon::desktop {

/// Presses and releases single keys on the posting device. Main thread, but for what names another.
class X11XTest {
 public:
    /// The error is a sentence for the log.
    static std::expected<std::unique_ptr<X11XTest>, QString> open(async::MainLoop& loop,
                                                                  std::shared_ptr<PostedKeys> posted);

    /// Adds a key to those that `send` sends. Any thread, but callers take turns: the order of posting is the order in
    /// which the tap expects the keys.
    void post(KeyCode code, KeyAction action);

    /// Adds to them that these modifiers count as locked, or no longer. No key of theirs goes down.
    void setLocked(ModifierMask modifiers, bool locked);

    /// Adds to them that the next key comes without these, latched or not.
    void unlatch(ModifierMask modifiers);

    /// Sends in one go, so that hardly a key of the user comes in between, and returns once the server has them. Any
    /// thread.
    void send() { connection_->sync(); }

    /// The keyboard map as it is now, or nothing if the server does not give it.
    std::shared_ptr<const X11Keyboard> keyboard();

    X11Connection& connection() { return *connection_; }

 private:
    X11XTest(async::MainLoop& loop, std::unique_ptr<X11Connection> connection, std::shared_ptr<PostedKeys> posted)
        : loop_(loop), connection_(std::move(connection)), posted_(std::move(posted)) {}

    async::MainLoop& loop_;
    std::unique_ptr<X11Connection> connection_;
    std::shared_ptr<PostedKeys> posted_;
    std::shared_ptr<const X11Keyboard> keyboard_;
};

}  // namespace tavrelon::desktop
