#pragma once

namespace tavrelon::desktop {

/// Gives back the hotkeys that a killed process has left with this session's compositor, so that they reach the windows
/// again. Does nothing where the program lives, or the session withholds no keys for a process that is gone. False
/// where a living program holds them. Needs a QCoreApplication; all its waits are bounded, a second at most.
bool letLeftOverKeysGo();

}  // namespace tavrelon::desktop
