#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <optional>

#include "keys/virtual_keys.h"

namespace tavrelon::desktop {

/// A key code as xkb counts them, 8 to 255.
using KeyCode = std::uint8_t;

/// The virtual key of keys that have none: no hotkey can mean it.
inline constexpr keys::VirtualKey unnamedKey = 0xFFFF;

/// The virtual key whose label is this symbol.
std::optional<keys::VirtualKey> virtualKeyOfSymbol(xkb_keysym_t symbol);

/// The virtual key that lies at this place on a US keyboard.
std::optional<keys::VirtualKey> virtualKeyOfPlace(KeyCode code);

/// The symbol on the label of a virtual key, and its place on a US keyboard.
struct KeyLabel {
    xkb_keysym_t symbol;
    KeyCode place;
};
std::optional<KeyLabel> labelOf(keys::VirtualKey key);

}  // namespace tavrelon::desktop
