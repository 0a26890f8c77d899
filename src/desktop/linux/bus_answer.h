#pragma once

#include <QString>
#include <chrono>

namespace tavrelon::desktop {

/// Whether the D-Bus server at `address` (such as "unix:path=/run/user/1000/bus,guid=…") says a word within `limit`.
/// To be asked before the library connects: that waits for a server without a bound, and all other connections of
/// the process stand still meanwhile. Blocks the calling thread for about `limit` at most. Servers that do not listen
/// on Unix sockets are not tried and count as answering. Any thread.
bool busAnswers(const QString& address, std::chrono::milliseconds limit);

}  // namespace tavrelon::desktop
