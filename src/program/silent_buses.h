#pragma once

#include "platform/log.h"

namespace tavrelon::program {

/// Takes buses that hang out of this process's environment, before Qt connects to them and waits without a bound: the
/// session bus for its tray icon, and IBus for the keys of its windows. What needs them goes without until the next
/// start. Blocks for about two seconds at most.
void avoidSilentBuses(platform::Log& log);

}  // namespace tavrelon::program
