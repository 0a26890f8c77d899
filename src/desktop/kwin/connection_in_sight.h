#pragma once

#include <expected>
#include <memory>

#include "desktop/wayland/connection/wayland_connection.h"

namespace tavrelon::desktop {

/// Connects with KWin so that it can see which program this is, by whose path it grants some interfaces. At the start,
/// before there is anything to know. The error is a sentence for the log.
std::expected<std::unique_ptr<WaylandConnection>, QString> connectInSight();

}  // namespace tavrelon::desktop
