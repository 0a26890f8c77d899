#pragma once

#include <QString>

#include "keys/hotkey_config.h"

namespace tavrelon::keys {

/// What key code 0 of a hotkey stands for: no key where a hotkey may consist of modifiers alone, else the key A.
enum class ZeroKey { None, A };

/// The text of one key; a key without a name is "Key" and its code.
QString keyDisplayName(VirtualKey keyCode);

/// The text of a hotkey as key caps show it: the modifiers' symbols and the key's name, as in "⌃⌥L". Nothing at all
/// shows as "Not Set".
QString displayName(VirtualKey keyCode, Modifiers modifiers, ZeroKey zero = ZeroKey::None);

/// The same in words, as in "Ctrl+Alt+L"; Command is Super here.
QString plainName(VirtualKey keyCode, Modifiers modifiers, ZeroKey zero = ZeroKey::None);

/// Whether people write with the key when no modifier but Shift is held: letters, digits, signs, blanks, and the keys
/// that delete or move the caret.
bool isUsedInWriting(VirtualKey keyCode);

}  // namespace tavrelon::keys
