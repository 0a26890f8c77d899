#pragma once

#include <deque>
#include <expected>
#include <memory>
#include <vector>

#include "desktop/x11/connection/x11_connection.h"
#include "desktop/x11/keys/x11_key_posts.h"
#include "desktop/x11/keys/x11_keyboard_devices.h"

namespace tavrelon::desktop {

/// One key going down or up. The server makes none of these for a key that repeats.
struct KeyStroke {
    DeviceId device = 0;
    KeyCode code = 0;
    KeyAction action = KeyAction::Press;
    std::uint32_t time = 0;  ///< the server's
};

/// A moment among strokes, many of which may fall into one millisecond.
struct KeyMoment {
    std::uint32_t time = 0;
    KeyCode code = 0;  ///< what was struck at this moment; 0 for nothing
    KeyAction action = KeyAction::Press;
};

/// A record of the keys that go their ordinary way. Those that a program gets because it holds the whole keyboard (a
/// screen locker, a password prompt, a menu) are not in it: the server tells a client of XInput 2.0 only of the others,
/// which is the one way to ask without disturbing anybody.
///
/// Nobody waits for this connection. What comes stays in its socket, 40 bytes each, until something else gives a reason
/// to look, so that a key at rest wakes no thread of ours. One thread.
class X11UngrabbedKeys {
 public:
    static std::expected<std::unique_ptr<X11UngrabbedKeys>, QString> open();

    /// Takes what has arrived, without waiting. To be called now and then, or it piles up.
    void drain();

    /// The strokes up to this moment that were not given yet, in their order.
    std::vector<KeyStroke> upTo(const KeyMoment& moment);

    /// Whether this stroke is among those given. To be asked in the order of the strokes, once for each.
    bool had(KeyCode code, std::uint32_t time);

 private:
    explicit X11UngrabbedKeys(std::unique_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

    std::unique_ptr<X11Connection> connection_;
    std::deque<KeyStroke> strokes_;
    std::deque<KeyStroke> given_;
};

}  // namespace tavrelon::desktop
