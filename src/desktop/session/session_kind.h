#pragma once

#include <cstdint>

namespace tavrelon::desktop {

/// Which session the environment describes.
enum class SessionKind : std::uint8_t {
    X11,
    Sway,
    Plasma,
    Gnome,
    OtherWayland,  ///< what is served there are the X11 windows
};

SessionKind sessionKind();

}  // namespace tavrelon::desktop
