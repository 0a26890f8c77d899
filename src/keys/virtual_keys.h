#pragma once

#include <cstdint>

namespace tavrelon::keys {

/// Virtual key codes, as hotkeys store them. They name places on a US keyboard.
using VirtualKey = std::uint16_t;

inline constexpr VirtualKey keyA = 0;
inline constexpr VirtualKey keyC = 8;
inline constexpr VirtualKey keyV = 9;
inline constexpr VirtualKey keyW = 13;
inline constexpr VirtualKey keyY = 16;
inline constexpr VirtualKey keyReturn = 36;
inline constexpr VirtualKey keyL = 37;
inline constexpr VirtualKey keyTab = 48;
inline constexpr VirtualKey keySpace = 49;
inline constexpr VirtualKey keyGrave = 50;
inline constexpr VirtualKey keyBackspace = 51;
inline constexpr VirtualKey keyEscape = 53;
inline constexpr VirtualKey keyKeypadEnter = 76;
inline constexpr VirtualKey keyForwardDelete = 117;

}  // namespace tavrelon::keys
