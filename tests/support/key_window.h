#pragma once

#include <xcb/xcb.h>

#include <vector>

#include "support/xtest_keyboard.h"

namespace tavrelon::testing {

/// A window of its own client that keeps the keys it gets, as an application would.
class KeyWindow {
 public:
    struct Stroke {
        place::Code code = 0;
        bool isPress = false;
        unsigned state = 0;  ///< the X modifiers before the key, locks included

        bool operator==(const Stroke&) const = default;
    };

    /// Opens and has the focus when it returns.
    KeyWindow();
    KeyWindow(const KeyWindow&) = delete;
    KeyWindow& operator=(const KeyWindow&) = delete;
    ~KeyWindow();

    /// Takes the focus and waits until it has it and the window manager says so.
    void focus();

    /// Grabs the whole keyboard, as an open menu does, and lets go of it.
    bool holdKeyboard();
    void letGoOfKeyboard();

    /// Grabs one combination above all windows, as window managers do.
    void holdCombination(place::Code code, unsigned modifiers);

    /// All that has arrived so far.
    const std::vector<Stroke>& strokes();

    /// The presses of ordinary keys.
    std::vector<place::Code> presses();
    bool got(place::Code code);
    void clear();

    /// The state with which a key was pressed last; -1 if it was not.
    int stateOf(place::Code code);

 private:
    bool isNamedByWindowManager() const;
    void pump();

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
    xcb_window_t window_ = 0;
    std::vector<Stroke> strokes_;
};

}  // namespace tavrelon::testing
