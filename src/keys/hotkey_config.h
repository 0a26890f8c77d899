#pragma once

#include "keys/modifiers.h"
#include "keys/virtual_keys.h"
#include "text/json.h"

namespace tavrelon::keys {

/// One global hotkey: a virtual key code and its modifiers. `keyCode` 0 is the key A, and no key at all in the two
/// voice hotkeys, which may consist of modifiers alone.
struct HotkeyConfig {
    VirtualKey keyCode = 0;
    Modifiers modifiers;

    bool operator==(const HotkeyConfig&) const = default;

    /// Whether a press of `pressedKey` with `flags` is this hotkey.
    bool matches(VirtualKey pressedKey, Modifiers flags) const {
        return pressedKey == keyCode && (flags & relevantModifierMask) == (modifiers & relevantModifierMask);
    }
};

/// An object of `keyCode` and `modifiersRaw`. Every bit of the latter is kept.
text::Json toJson(const HotkeyConfig& config);

/// Throws `text::JsonError` when a key is missing, of another type or out of range.
HotkeyConfig hotkeyConfigFrom(const text::Json& json);

/// The hotkeys as they are before the user changes them.
namespace defaults {
inline constexpr Modifiers shiftOptionCommand = shiftFlag | optionFlag | commandFlag;
inline constexpr HotkeyConfig toggleHotkey{37, shiftOptionCommand};
inline constexpr HotkeyConfig voiceHotkey{0, controlFlag | optionFlag};
inline constexpr HotkeyConfig voiceDictationHotkey{0, controlFlag | shiftFlag};
inline constexpr HotkeyConfig cancelHotkey{keyEscape, noModifiers};
inline constexpr HotkeyConfig autoReplyHotkey{keyA, shiftOptionCommand};
inline constexpr HotkeyConfig toggleAllHotkeysHotkey{40, shiftOptionCommand};
inline constexpr HotkeyConfig videoHotkey{5, shiftOptionCommand};
inline constexpr HotkeyConfig floatingInputHotkey{35, shiftOptionCommand};
inline constexpr HotkeyConfig quickAskHotkey{keyGrave, noModifiers};
}  // namespace defaults

}  // namespace tavrelon::keys
