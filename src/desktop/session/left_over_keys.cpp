#include "desktop/session/left_over_keys.h"

#include "desktop/kwin/keys/global_accel.h"
#include "desktop/linux/process/key_guardian.h"
#include "desktop/session/session_kind.h"
#include "desktop/wayland/sway/sway_left_overs.h"

namespace tavrelon::desktop {

namespace {

/// What a process that was just killed has open goes one after the other.
constexpr std::chrono::milliseconds patience{200};

}  // namespace

bool letLeftOverKeysGo() {
    const auto kind = sessionKind();
    if (kind != SessionKind::Sway && kind != SessionKind::Plasma)
        return true;
    const auto claim = KeyClaim::take(patience);
    if (!claim)
        return false;
    if (kind == SessionKind::Sway) {
        if (const auto ipc = SwayIpc::open())
            SwayLeftOvers::remove(**ipc);
    } else if (auto bus = KWinBus::open()) {
        GlobalAccel(*std::move(bus)).letGoOfAll();
    }
    return true;
}

}  // namespace tavrelon::desktop
