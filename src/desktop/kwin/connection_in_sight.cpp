#include "desktop/kwin/connection_in_sight.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <csignal>
#include <cstring>
#include <optional>

namespace tavrelon::desktop {

namespace {

constexpr int connectLimitMs = 1000;

std::optional<sockaddr_un> compositorAddress() {
    const QDir folder(qEnvironmentVariable("XDG_RUNTIME_DIR"));
    const auto path = QFile::encodeName(folder.absoluteFilePath(qEnvironmentVariable("WAYLAND_DISPLAY")));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return std::nullopt;
    std::memcpy(&address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
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

std::expected<std::unique_ptr<WaylandConnection>, QString> connectInSight() {
    const auto failed = std::unexpected(QStringLiteral("The Wayland compositor cannot be reached."));
    const auto address = compositorAddress();
    int ends[2];
    if (!address || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return failed;
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const pid_t copy = socket < 0 ? -1 : ::fork();
    if (copy == 0) {
        ::close(ends[0]);
        connectAndStay(socket, *address, ends[1]);
    }
    ::close(ends[1]);
    const bool isConnected = copy > 0 && isTold(ends[0]);
    if (!isConnected && socket >= 0)
        ::close(socket);
    // KWin has looked at the copy once it has answered.
    auto connection = isConnected ? WaylandConnection::open(socket)
                                  : std::expected<std::unique_ptr<WaylandConnection>, QString>(failed);
    ::close(ends[0]);
    if (copy > 0) {
        ::kill(copy, SIGKILL);
        ::waitpid(copy, nullptr, 0);
    }
    return connection;
}

}  // namespace tavrelon::desktop
