#include "desktop/session/session_kind.h"

#include <QtGlobal>

namespace tavrelon::desktop {

SessionKind sessionKind() {
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return SessionKind::X11;
    return qEnvironmentVariableIsEmpty("SWAYSOCK") ? SessionKind::OtherWayland : SessionKind::Sway;
}

}  // namespace tavrelon::desktop
