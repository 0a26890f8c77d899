#include "desktop/linux/single_instance.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QSocketNotifier>
#include <cerrno>
#include <cstring>

namespace tavrelon::desktop {

namespace {

constexpr int longestWaitMilliseconds = 2000;
constexpr int callersAtOnce = 8;
constexpr char greeting = '!';

struct SocketName {
    sockaddr_un address{};
    socklen_t length = 0;
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

/// A name without a file: it starts with a null byte. It tells users and folders apart, and gives away neither.
SocketName nameFor(const QString& folder) {
    const auto key = QDir::cleanPath(folder).toUtf8() + '\n' + QByteArray::number(::getuid());
    const auto text =
        QByteArray("tavrelon-") + QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex().first(32);
    SocketName name;
    name.address.sun_family = AF_UNIX;
    std::memcpy(name.address.sun_path + 1, text.constData(), static_cast<std::size_t>(text.size()));
    name.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + static_cast<std::size_t>(text.size()));
    return name;
}

/// Whether the process at the other end is this user's: anyone may take or call a name.
bool isOwnPeer(int fd) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

enum class Owner { None, Foreign, Silent, Answering };

Owner call(const SocketName& name) {
    const Descriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!fd || ::connect(fd.fd(), name.get(), name.length) != 0)
        return errno == EAGAIN ? Owner::Silent : Owner::None;  // a full queue: nobody takes callers
    if (!isOwnPeer(fd.fd()))
        return Owner::Foreign;
    pollfd state{.fd = fd.fd(), .events = POLLIN, .revents = 0};
    char byte = 0;
    const bool answered = ::poll(&state, 1, longestWaitMilliseconds) > 0 && ::read(fd.fd(), &byte, 1) == 1;
    return answered && byte == greeting ? Owner::Answering : Owner::Silent;
}

}  // namespace

std::expected<std::unique_ptr<SingleInstance>, SingleInstance::Refusal> SingleInstance::claim(const QString& folder) {
    const auto name = nameFor(folder);
    constexpr int attempts = 2;  // the owner may end between the two questions
    for (int i = 0; i < attempts; ++i) {
        Descriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        if (fd && ::bind(fd.fd(), name.get(), name.length) == 0 && ::listen(fd.fd(), callersAtOnce) == 0)
            return std::unique_ptr<SingleInstance>(new SingleInstance(std::move(fd)));
        if (!fd || errno != EADDRINUSE)
            break;
        switch (call(name)) {
            case Owner::Answering:
                return std::unexpected(Refusal::Answered);
            case Owner::Silent:
                return std::unexpected(Refusal::Silent);
            case Owner::Foreign:  // a stranger on our name must not keep the user from working
                return std::unique_ptr<SingleInstance>(new SingleInstance(Descriptor(-1)));
            case Owner::None:
                break;
        }
    }
    return std::unique_ptr<SingleInstance>(new SingleInstance(Descriptor(-1)));
}

SingleInstance::SingleInstance(Descriptor socket) : socket_(std::move(socket)) {}

SingleInstance::~SingleInstance() = default;

void SingleInstance::setOnCalled(std::function<void()> onCalled) {
    onCalled_ = std::move(onCalled);
    if (!socket_ || notifier_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(socket_.fd(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { answerCallers(); });
}

void SingleInstance::answerCallers() {
    bool called = false;
    for (;;) {
        const Descriptor caller(::accept4(socket_.fd(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!caller)
            break;
        if (isOwnPeer(caller.fd()))
            called = ::send(caller.fd(), &greeting, 1, MSG_NOSIGNAL) == 1 || called;
    }
    if (called && onCalled_)
        onCalled_();
}

}  // namespace tavrelon::desktop
