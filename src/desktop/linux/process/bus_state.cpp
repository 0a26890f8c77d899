#include "desktop/linux/process/bus_state.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QList>
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <optional>

#include "desktop/linux/files/posix_files.h"

namespace tavrelon::desktop {

namespace {

/// The value under `key` of an address like "unix:key=value,key=value".
std::optional<QByteArray> valueIn(QStringView address, QStringView key) {
    for (const auto pair : address.sliced(address.indexOf(u':') + 1).split(u',')) {
        if (pair.startsWith(key) && pair.sliced(key.size()).startsWith(u'='))
            return QByteArray::fromPercentEncoding(pair.sliced(key.size() + 1).toUtf8());
    }
    return std::nullopt;
}

/// The name in the file system, or behind a zero byte that in the abstract name space; absent for other addresses.
std::optional<QByteArray> socketName(QStringView address) {
    if (!address.startsWith(u"unix:"))
        return std::nullopt;
    if (auto path = valueIn(address, u"path"))
        return path;
    const auto name = valueIn(address, u"abstract");
    return name ? std::optional('\0' + *name) : std::nullopt;
}

/// Zero, or an error; EAGAIN where so many clients wait already that nobody can be taking them.
int connectTo(const QByteArray& name, int socket) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (name.isEmpty() || name.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return EINVAL;
    std::ranges::copy(name, address.sun_path);
    // The length is part of an abstract name.
    const auto length = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(name.size());
    const auto* any = reinterpret_cast<const sockaddr*>(&address);
    return ::connect(socket, any, static_cast<socklen_t>(length)) == 0 ? 0 : errno;
}

/// Every client begins with a zero byte; asked without a mechanism the server only lists those that it knows.
bool greets(int socket, QDeadlineTimer deadline) {
    constexpr QByteArrayView greeting("\0AUTH\r\n", 7);
    if (::send(socket, greeting.data(), greeting.size(), MSG_NOSIGNAL) != greeting.size())
        return false;
    pollfd waiting{.fd = socket, .events = POLLIN, .revents = 0};
    char byte = 0;
    return ::poll(&waiting, 1, static_cast<int>(deadline.remainingTime())) == 1 && ::recv(socket, &byte, 1, 0) == 1;
}

BusState serverState(QStringView address, QDeadlineTimer deadline) {
    const auto name = socketName(address);
    if (!name)
        return BusState::Speaks;
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const int error = connectTo(*name, socket.fd());
    if (error != 0)
        return error == EAGAIN ? BusState::Silent : BusState::Absent;
    return greets(socket.fd(), deadline) ? BusState::Speaks : BusState::Silent;
}

}  // namespace

BusState busState(const QString& address, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    auto best = BusState::Absent;
    for (const auto server : QStringView(address).split(u';', Qt::SkipEmptyParts))
        best = std::min(best, serverState(server, deadline));
    return best;
}

QString sessionBusAddress() {
    if (auto given = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"); !given.isEmpty())
        return given;
    const auto path = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
    return QFile::exists(path) ? QStringLiteral("unix:path=") + path : QString();
}

}  // namespace tavrelon::desktop
