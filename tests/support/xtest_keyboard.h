#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

namespace tavrelon::testing {

/// The places of keys on an X keyboard, named by their US labels.
namespace place {
using Code = std::uint8_t;
inline constexpr Code escape = 9, backspace = 22, tab = 23, q = 24, w = 25, y = 29, enter = 36, leftControl = 37,
                      a = 38, s = 39;
inline constexpr Code k = 45, l = 46, grave = 49, leftShift = 50, z = 52, x = 53, c = 54, v = 55, leftAlt = 64;
inline constexpr Code space = 65, capsLock = 66, numLock = 77, f12 = 96, leftSuper = 133;
}  // namespace place

/// Strikes keys as a person would: they come from the X server's own keyboard, not from the device of posted keys.
class XTestKeyboard {
 public:
    XTestKeyboard();
    ~XTestKeyboard();

    void press(place::Code code);
    void release(place::Code code);
    void strike(place::Code code);
    void strikeWith(std::initializer_list<place::Code> modifiers, place::Code code);

    /// As `strike`, but as another program that posts keys does.
    void strikePosted(place::Code code);

    /// Switches to a layout of the map in force.
    void lockGroup(unsigned group);

    /// Locks these modifiers of an X event's state, and unlocks all others, as sticky keys do.
    void lockModifiers(unsigned mask);

    /// Lets these go with the next key.
    void latchModifiers(unsigned mask);

    /// Keys that are down on the device of posted keys.
    std::vector<place::Code> downOnPostingDevice();

    /// Keys that are down for the session as a whole.
    std::vector<place::Code> down();

 private:
    struct Display;
    std::unique_ptr<Display> display_;
};

/// Runs a program and waits for its end. False if it failed.
bool runProgram(std::initializer_list<const char*> command);

}  // namespace tavrelon::testing
