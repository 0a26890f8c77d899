#include "desktop/kwin/connection_in_sight.h"

#include <QDir>

#include "desktop/linux/process/socket_in_sight.h"

namespace tavrelon::desktop {

std::expected<std::unique_ptr<WaylandConnection>, QString> connectInSight() {
    const QDir folder(qEnvironmentVariable("XDG_RUNTIME_DIR"));
    auto inSight = SocketInSight::connect(folder.absoluteFilePath(qEnvironmentVariable("WAYLAND_DISPLAY")));
    if (!inSight)
        return std::unexpected(QStringLiteral("The Wayland compositor cannot be reached."));
    // KWin has looked once it has answered.
    return WaylandConnection::open(inSight->takeSocket());
}

}  // namespace tavrelon::desktop
