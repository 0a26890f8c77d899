#pragma once

#include <expected>

#include "desktop/x11/connection/x11_connection.h"
#include "desktop/x11/keys/x11_key_posts.h"
#include "desktop/x11/keys/x11_keyboard.h"
#include "platform/key_event.h"

namespace tavrelon::desktop {

/// Names keys as hotkeys name them, by the code and the state that the X server puts into its key events. Main
/// thread.
class X11NativeKeys {
 public:
    /// The error says what is missing.
    static std::expected<std::unique_ptr<X11NativeKeys>, QString> create();

    /// Reads the keyboard map anew.
    void refresh();

    /// `state` holds the modifiers before the key. Nothing for releases of ordinary keys, for locks, and for keys that
    /// have no virtual key.
    std::optional<platform::KeyEvent> eventOf(KeyCode code, unsigned state, KeyAction action, bool isRepeat) const;

 private:
    explicit X11NativeKeys(std::unique_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<const X11Keyboard> keyboard_;
};

}  // namespace tavrelon::desktop
