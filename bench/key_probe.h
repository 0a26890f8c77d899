#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrelon::bench {

/// A keyboard and a window with the focus, on one connection to the X server: it presses keys as the hardware would and
/// sees when they reach an application. Times are of the monotonic clock. Every wait is bounded.
class KeyProbe {
 public:
    using Clock = std::chrono::steady_clock;

    struct KeyEvent {
        unsigned keycode = 0;
        unsigned modifiers = 0;  ///< the core mask
        Clock::time_point time;
    };
    struct Area {
        int x = 0, y = 0;
        unsigned width = 0, height = 0;
    };
    struct Flood {
        int received = 0;
        int misplaced = 0;  ///< keys that came in another order than they were struck
    };

    /// Throws `std::runtime_error` when there is no display or the window does not get the focus.
    KeyProbe();
    ~KeyProbe();
    KeyProbe(const KeyProbe&) = delete;
    KeyProbe& operator=(const KeyProbe&) = delete;

    /// Presses and releases a chord such as "shift+alt+super+l" and gives the moment before its last key went down.
    Clock::time_point strike(const std::string& chord);

    /// The next key press with this key and at least these modifiers, others are skipped; absent past the bound.
    std::optional<KeyEvent> awaitPress(const std::string& chord, std::chrono::milliseconds limit);

    /// How long after a chord the first frame shows something else in that part of the screen; absent past the bound.
    std::optional<std::chrono::nanoseconds> untilChanged(const std::string& chord, Area area,
                                                         std::chrono::milliseconds limit);

    /// How long after a chord the input focus has left this window, or has come back to it; absent past the bound.
    enum class Focus { Gone, Back };
    std::optional<std::chrono::nanoseconds> untilFocus(const std::string& chord, Focus focus,
                                                       std::chrono::milliseconds limit);

    /// Strikes the key `count` times, each after the last one arrived; a lost key is left out of the result.
    std::vector<std::chrono::nanoseconds> latencies(const std::string& key, int count, std::chrono::microseconds pause);

    /// Strikes `count` keys one on the heels of the other, letters with an Escape among them, and sees what arrives.
    Flood flood(int count);

 private:
    struct Chord {
        std::vector<unsigned> modifierKeys;
        unsigned modifierMask = 0;
        unsigned key = 0;
    };

    void openKeyboard();
    void openWindow();
    void awaitFocus();
    Chord parse(const std::string& chord) const;
    unsigned keycodeOf(const std::string& name) const;
    void send(unsigned keycode, bool down);
    std::vector<char> pixels(Area area) const;
    bool hasFocus() const;
    std::optional<KeyEvent> nextPress(Clock::time_point until);

    Display* display_ = nullptr;
    XDevice* keyboard_ = nullptr;  ///< absent on a server without a keyboard of its own; XTest's serves then
    Window window_ = 0;
    bool focused_ = false;
};

}  // namespace tavrelon::bench
