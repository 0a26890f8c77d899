#pragma once

#include <deque>
#include <expected>
#include <memory>

#include "desktop/x11/connection/x11_connection.h"
#include "desktop/x11/keys/x11_key_table.h"

namespace tavrelon::desktop {

/// Tells the keys that go their ordinary way from those that a program gets because it holds the whole keyboard: a
/// screen locker, a password prompt, a menu. The server tells a client of XInput 2.0 only of the former, which is the
/// one way to ask without disturbing anybody. One thread.
class X11UngrabbedKeys {
 public:
    static std::expected<std::unique_ptr<X11UngrabbedKeys>, QString> open();

    /// Takes what has arrived, without waiting. To be called now and then, or it piles up.
    void drain();

    /// Whether this press or release went its ordinary way. `time` is the server's. To be asked in the order of the
    /// strokes, once for each.
    bool had(KeyCode code, std::uint32_t time);

 private:
    struct Stroke {
        KeyCode code;
        std::uint32_t time;

        bool operator==(const Stroke&) const = default;
    };

    explicit X11UngrabbedKeys(std::unique_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

    std::unique_ptr<X11Connection> connection_;
    std::deque<Stroke> strokes_;
};

}  // namespace tavrelon::desktop
