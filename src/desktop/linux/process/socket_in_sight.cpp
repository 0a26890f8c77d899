#include "desktop/linux/process/socket_in_sight.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <csignal>
#include <cstring>

namespace tavrelon::desktop {

namespace {

constexpr int connectLimitMs = 1000;

std::optional<sockaddr_un> addressOf(const QString& path) {
    const auto name = QFile::encodeName(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || name.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return std::nullopt;
    std::memcpy(&address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    return address;
}

/// In the copy of a process with threads: nothing but calls of the kernel.
[[noreturn]] void connectAndStay(int socket, const sockaddr_un& address, int told) {
    ::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0);
    const bool isConnected = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    char byte = 0;
    // Until the end of this process or of the one before it.
    if (isConnected && ::write(told, &byte, 1) == 1)
        while (::read(told, &byte, 1) < 0 && errno == EINTR) {
        }
    ::_exit(0);
}

bool isTold(int descriptor) {
    pollfd wait{descriptor, POLLIN, 0};
    char byte = 0;
    return ::poll(&wait, 1, connectLimitMs) == 1 && ::read(descriptor, &byte, 1) == 1;
}

}  // namespace

std::optional<SocketInSight> SocketInSight::connect(const QString& path) {
    const auto address = addressOf(path);
    int ends[2];
    if (!address || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return std::nullopt;
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const pid_t copy = socket < 0 ? -1 : ::fork();
    if (copy == 0) {
        ::close(ends[0]);
        connectAndStay(socket, *address, ends[1]);
    }
    ::close(ends[1]);
    SocketInSight made(socket, copy, ends[0]);
    if (copy < 0 || !isTold(ends[0]))
        return std::nullopt;
    return made;
}

SocketInSight::~SocketInSight() {
    if (socket_ >= 0)
        ::close(socket_);
    if (end_ >= 0)
        ::close(end_);
    if (copy_ > 0) {
        ::kill(copy_, SIGKILL);
        ::waitpid(copy_, nullptr, 0);
    }
}

}  // namespace tavrelon::desktop
