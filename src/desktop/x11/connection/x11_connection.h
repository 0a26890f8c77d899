#pragma once

#include <xcb/xcb.h>

#include <QString>
#include <cstdint>
#include <cstdlib>
#include <expected>
#include <memory>

namespace tavrelon::desktop {

struct FreeWithC {
    void operator()(void* memory) const { std::free(memory); }
};

/// An event or a reply of the X server.
template <typename T>
using XPointer = std::unique_ptr<T, FreeWithC>;

/// What the server is told that this client knows of the XInput extension. A client of 2.0 gets raw events only while
/// nobody holds the device; one of 2.2 always.
enum class InputVersion : std::uint8_t { TwoZero = 0, TwoTwo = 2 };

/// A connection to the X server with the XInput 2 and XKB extensions set up. Requests may come from any thread;
/// only one thread may wait for events. A broken connection answers every question with nothing.
class X11Connection {
 public:
    /// Opens the display of the environment. The error is a sentence for the log.
    static std::expected<std::unique_ptr<X11Connection>, QString> open(InputVersion version = InputVersion::TwoTwo);

    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection() { xcb_disconnect(connection_); }

    xcb_connection_t* get() const { return connection_; }
    xcb_window_t root() const { return root_; }
    std::uint8_t inputOpcode() const { return inputOpcode_; }
    std::uint8_t firstXkbEvent() const { return firstXkbEvent_; }
    bool isBroken() const { return xcb_connection_has_error(connection_) != 0; }

    /// Makes every request and wait fail from now on, also those that other threads are in.
    void breakOff();

    void flush() { xcb_flush(connection_); }

    /// Returns once the server has done everything that was asked before.
    void sync();

 private:
    explicit X11Connection(xcb_connection_t* connection) : connection_(connection) {}
    std::expected<void, QString> setUp(int screen, InputVersion version);

    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
    std::uint8_t inputOpcode_ = 0;
    std::uint8_t firstXkbEvent_ = 0;
};

}  // namespace tavrelon::desktop
