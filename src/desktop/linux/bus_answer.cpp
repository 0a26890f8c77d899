#include "desktop/linux/bus_answer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QDeadlineTimer>
#include <QList>
#include <algorithm>
#include <cstddef>
#include <optional>

#include "desktop/linux/posix_files.h"

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

/// Fails at once where nobody listens, and where so many clients wait already that nobody can be taking them.
bool connectTo(const QByteArray& name, int socket) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (name.isEmpty() || name.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return false;
    std::ranges::copy(name, address.sun_path);
    // The length is part of an abstract name.
    const auto length = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(name.size());
    return ::connect(socket, reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(length)) == 0;
}

bool send(QByteArrayView bytes, int socket) {
    return ::send(socket, bytes.data(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL) == bytes.size();
}

bool receivesBefore(QDeadlineTimer deadline, int socket) {
    pollfd waiting{.fd = socket, .events = POLLIN, .revents = 0};
    char byte = 0;
    return ::poll(&waiting, 1, static_cast<int>(deadline.remainingTime())) == 1 && ::recv(socket, &byte, 1, 0) == 1;
}

bool serverAnswers(QStringView address, QDeadlineTimer deadline) {
    const auto name = socketName(address);
    if (!name)
        return true;
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    // Every client begins with a zero byte; asked without a mechanism the server only lists those that it knows.
    return connectTo(*name, socket.fd()) && send(QByteArrayView("\0AUTH\r\n", 7), socket.fd()) &&
           receivesBefore(deadline, socket.fd());
}

}  // namespace

bool busAnswers(const QString& address, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    const auto servers = QStringView(address).split(u';', Qt::SkipEmptyParts);
    return std::ranges::any_of(servers, [&](QStringView server) { return serverAnswers(server, deadline); });
}

}  // namespace tavrelon::desktop
