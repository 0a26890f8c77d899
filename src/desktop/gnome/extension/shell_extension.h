#pragma once

#include "platform/log.h"
#include "platform/permissions.h"

namespace tavrelon::desktop {

/// The user's leave for our extension of GNOME's shell. To request it puts the extension for this shell into the user's
/// own folder, so that it serves the program that asks, and switches it on; the outcome is logged. A shell finds a new
/// extension at the next login, and a program connects with it at its start. `isServed` is whether this one is. The log
/// must outlive it.
platform::Permission shellExtension(platform::Log& log, bool isServed);

}  // namespace tavrelon::desktop
