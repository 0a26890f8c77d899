#pragma once

#include <vector>

#include "desktop/wayland/sway/sway_combinations.h"
#include "desktop/wayland/sway/sway_ipc.h"

namespace tavrelon::desktop {

/// What the configuration that sway has loaded binds, the files that it includes among it. Bindings that a program made
/// since are not in it.
std::vector<SwayCombination> combinationsOfUser(SwayIpc& ipc);

/// How many layouts the keyboard with the most has; at least one.
int layoutsInUse(SwayIpc& ipc);

/// The mode whose bindings are in force.
QString modeInForce(SwayIpc& ipc);

}  // namespace tavrelon::desktop
