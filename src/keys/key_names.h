#pragma once

#include <QString>

#include "keys/hotkey_config.h"

namespace tavrelon::keys {

/// The text of one key; a key without a name is "Key" and its code.
QString keyDisplayName(VirtualKey keyCode);

/// The text of a hotkey: the modifiers' symbols and the key's name. `keyCode` 0 shows no key; nothing at all shows as
/// "Not Set".
QString displayName(VirtualKey keyCode, Modifiers modifiers);

}  // namespace tavrelon::keys
