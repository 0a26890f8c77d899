#pragma once

#include <array>
#include <compare>
#include <set>
#include <vector>

#include "desktop/x11/keys/x11_keyboard.h"
#include "keys/hotkey_config.h"

namespace tavrelon::desktop {

/// A key with exact modifiers, locks left out.
struct KeyGrab {
    KeyCode code = 0;
    ModifierMask modifiers = 0;

    auto operator<=>(const KeyGrab&) const = default;
};
using GrabSet = std::set<KeyGrab>;

/// The keys to hold for one hotkey while layout `group` is in force; none if this keyboard cannot give it. A bare key
/// must type its symbol in that very layout, or a letter of the user's language would be lost.
GrabSet grabsFor(const keys::HotkeyConfig& hotkey, const X11Keyboard& keyboard, unsigned group);

/// The way from one set to another. Keys in both are not touched: letting go for a moment would lose a key press.
struct GrabChange {
    GrabSet added;
    GrabSet removed;
};
GrabChange changeOf(const GrabSet& from, const GrabSet& to);

/// The modifiers with every state of Caps Lock and Num Lock. Values repeat where there is no Num Lock.
std::array<std::uint32_t, 4> withLocks(ModifierMask modifiers, ModifierMask numLock);
GrabSet withLocks(const GrabSet& grabs, ModifierMask numLock);

}  // namespace tavrelon::desktop
