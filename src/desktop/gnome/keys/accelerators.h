#pragma once

#include <QString>
#include <vector>

#include "platform/hotkeys.h"

namespace tavrelon::desktop {

/// A hotkey as GNOME's shell writes it, as in "<Shift><Super>l". Modifiers alone have one for each key that may go down
/// last. Empty where no key has such a label.
std::vector<QString> acceleratorsOf(const platform::WantedHotkey& hotkey);

}  // namespace tavrelon::desktop
