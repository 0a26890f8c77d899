#pragma once

#include <cstdint>

namespace tavrelon::keys {

/// A set of modifier keys, by the raw mask in which hotkeys are stored. On this desktop Command is Super and Option is
/// Alt. Bits outside the four named flags are carried along and mean nothing.
struct Modifiers {
    std::uint64_t raw = 0;

    bool contains(Modifiers other) const { return (raw & other.raw) == other.raw; }
    bool intersects(Modifiers other) const { return (raw & other.raw) != 0; }
    bool isEmpty() const { return raw == 0; }
    bool operator==(const Modifiers&) const = default;
};

constexpr Modifiers operator|(Modifiers a, Modifiers b) {
    return {a.raw | b.raw};
}
constexpr Modifiers operator&(Modifiers a, Modifiers b) {
    return {a.raw & b.raw};
}

inline constexpr Modifiers noModifiers{};
inline constexpr Modifiers shiftFlag{0x20000};
inline constexpr Modifiers controlFlag{0x40000};
inline constexpr Modifiers optionFlag{0x80000};
inline constexpr Modifiers commandFlag{0x100000};

/// The flags that take part in a comparison of hotkeys; locks and device bits never do.
inline constexpr Modifiers relevantModifierMask{0x1E0000};

}  // namespace tavrelon::keys
