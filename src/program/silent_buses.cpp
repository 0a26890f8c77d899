#include "program/silent_buses.h"

#include "desktop/linux/input_method/input_method_inquiry.h"
#include "desktop/linux/process/bus_state.h"

namespace tavrelon::program {

namespace {

constexpr std::chrono::milliseconds limit{1000};

bool isSilent(const QString& address) {
    return desktop::busState(address, limit) == desktop::BusState::Silent;
}

}  // namespace

void avoidSilentBuses(platform::Log& log) {
    if (isSilent(desktop::sessionBusAddress())) {
        log.line(QStringLiteral("[Start] The session bus does not answer; going on without it"));
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    }
    if (qEnvironmentVariable("QT_IM_MODULE") == QLatin1StringView("ibus") && isSilent(desktop::ibusAddressNow())) {
        log.line(QStringLiteral("[Start] IBus does not answer; going on without it"));
        qputenv("QT_IM_MODULE", "compose");
    }
}

}  // namespace tavrelon::program
