#pragma once

#include <QString>
#include <vector>

#include "platform/hotkeys.h"

namespace tavrelon::desktop {

/// The keys of a hotkey as KGlobalAccel counts them, Qt's key and modifiers in one number. Modifiers alone have one for
/// each that may go down last. Empty where Qt has no such key.
std::vector<int> qtKeysOf(const platform::WantedHotkey& hotkey);

}  // namespace tavrelon::desktop
