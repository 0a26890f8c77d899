#pragma once

#include <array>
#include <compare>
#include <set>
#include <vector>

#include "desktop/x11/x11_keyboard.h"
#include "keys/hotkey_config.h"

namespace tavrelon::desktop {

/// A key with exact modifiers, locks left out.
struct KeyGrab {
    KeyCode code = 0;
    ModifierMask modifiers = 0;

    auto operator<=>(const KeyGrab&) const = default;
};
using GrabSet = std::set<KeyGrab>;

/// The keys to hold for one hotkey; none if this keyboard cannot give it.
GrabSet grabsFor(const keys::HotkeyConfig& hotkey, const X11Keyboard& keyboard);
GrabSet grabsFor(const std::vector<keys::HotkeyConfig>& hotkeys, const X11Keyboard& keyboard);

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
