#pragma once

#include <expected>
#include <memory>

#include "desktop/wayland/connection/wayland_connection.h"

namespace tavrelon::desktop {

/// Connects with KWin so that it can see which program this is. KWin grants some interfaces by the path of the process
/// that connects, which one that keeps its memory to itself hides too. So a copy of this process connects, without that
/// care and for as long as it takes; what the program comes to know later is never in sight. At the start, before there
/// is anything to know. The error is a sentence for the log.
std::expected<std::unique_ptr<WaylandConnection>, QString> connectInSight();

}  // namespace tavrelon::desktop
