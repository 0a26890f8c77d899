#include "desktop/session/session_kind.h"

#include <QStringList>

namespace tavrelon::desktop {

SessionKind sessionKind() {
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return SessionKind::X11;
    if (!qEnvironmentVariableIsEmpty("SWAYSOCK"))
        return SessionKind::Sway;
    // Names of the desktop and of what it is a kind of, with colons between them.
    const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    if (desktops.contains(u"KDE"))
        return SessionKind::Plasma;
    return desktops.contains(u"GNOME") ? SessionKind::Gnome : SessionKind::OtherWayland;
}

}  // namespace tavrelon::desktop
