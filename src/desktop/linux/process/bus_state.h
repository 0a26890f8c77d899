#pragma once

#include <QString>
#include <chrono>
#include <cstdint>

namespace tavrelon::desktop {

enum class BusState : std::uint8_t {
    Speaks,
    Silent,  ///< takes connections and says nothing, or not even takes them
    Absent,
};

/// What the D-Bus server at `address` (such as "unix:path=/run/user/1000/bus,guid=…") does within `limit`. To be asked
/// before the library connects: that waits for a silent server without a bound, and all other connections of the
/// process stand still meanwhile. Blocks the calling thread for about `limit` at most. Servers that do not listen on
/// Unix sockets are not tried and count as speaking. Any thread.
BusState busState(const QString& address, std::chrono::milliseconds limit);

/// Where the session bus listens, by the environment; empty where nothing tells.
QString sessionBusAddress();

}  // namespace tavrelon::desktop
