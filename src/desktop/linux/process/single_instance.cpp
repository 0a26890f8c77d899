#include "desktop/linux/process/single_instance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace tavrelon::desktop {

namespace {

constexpr std::chrono::milliseconds longestWait{2000};
constexpr auto lockName = "/.tavrelon-lock";
constexpr int callersAtOnce = 8;
constexpr char greeting = '!';
constexpr std::size_t longestWish = 32;

/// How long a caller may take to say what it wants, which it does at once.
constexpr int wishMilliseconds = 100;

QString wishOf(int caller) {
    pollfd state{.fd = caller, .events = POLLIN, .revents = 0};
    std::array<char, longestWish> word{};
    const auto count = ::poll(&state, 1, wishMilliseconds) > 0 ? ::read(caller, word.data(), word.size()) : 0;
    return QString::fromLatin1(word.data(), std::max<ssize_t>(count, 0));
}

/// The lock of the folder. What takes no new files is locked itself.
std::expected<Descriptor, PosixError> lockOf(const QString& folder) {
    const auto path = QFile::encodeName(folder);
    Descriptor file(::open((path + lockName).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                           S_IRUSR | S_IWUSR));
    Descriptor taken(file ? std::move(file) : Descriptor(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    if (!taken || ::flock(taken.fd(), LOCK_EX | LOCK_NB) != 0)
        return failure();
    return taken;
}

/// Whether the process at the other end is this user's.
bool isOwnPeer(int fd) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

/// The folder, held open, if it is this user's alone.
Descriptor privateFolder(const QString& path) {
    Descriptor folder(
        path.startsWith(u'/') ? ::open(QFile::encodeName(path).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC) : -1);
    struct stat status{};
    const bool isOwn = folder && ::fstat(folder.fd(), &status) == 0 && status.st_uid == ::geteuid() &&
                       (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return isOwn ? std::move(folder) : Descriptor(-1);
}

enum class Owner { None, Silent, Answering };

}  // namespace

/// A place for the socket of a claimed folder, and the socket if it was opened there.
class SingleInstance::CallSocket {
 public:
    CallSocket(const QString& place, const QString& claimed)
        : folder_(privateFolder(place)),
          name_(".tavrelon-" + QCryptographicHash::hash(QDir::cleanPath(claimed).toUtf8(), QCryptographicHash::Sha256)
                                   .toHex()
                                   .first(16)) {
        // By the folder's descriptor: its path may be longer than an address can be.
        const auto path = "/proc/self/fd/" + QByteArray::number(folder_.fd()) + '/' + name_;
        address_.sun_family = AF_UNIX;
        std::memcpy(address_.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    }
    CallSocket(const CallSocket&) = delete;
    CallSocket& operator=(const CallSocket&) = delete;
    ~CallSocket() {
        if (isOpen_)
            ::unlinkat(folder_.fd(), name_.constData(), 0);
    }

    int fd() const { return isOpen_ ? socket_.fd() : -1; }

    /// In the place of one that a killed process left behind.
    bool open() {
        if (!folder_ || !socket_)
            return false;
        ::unlinkat(folder_.fd(), name_.constData(), 0);
        isOpen_ = ::bind(socket_.fd(), address(), sizeof address_) == 0 && ::listen(socket_.fd(), callersAtOnce) == 0;
        return isOpen_;
    }

    Owner call(const QString& wanted) const {
        const Descriptor caller(newSocket());
        if (!folder_ || !caller)
            return Owner::None;
        if (::connect(caller.fd(), address(), sizeof address_) != 0)
            return errno == EAGAIN ? Owner::Silent : Owner::None;  // a full queue: nobody takes callers
        if (!isOwnPeer(caller.fd()))
            return Owner::None;
        const auto word = wanted.toLatin1().left(longestWish);
        if (::send(caller.fd(), word.constData(), static_cast<std::size_t>(word.size()), MSG_NOSIGNAL) < 0)
            return Owner::Silent;
        pollfd state{.fd = caller.fd(), .events = POLLIN, .revents = 0};
        char byte = 0;
        const bool answered =
            ::poll(&state, 1, static_cast<int>(longestWait.count())) > 0 && ::read(caller.fd(), &byte, 1) == 1;
        return answered && byte == greeting ? Owner::Answering : Owner::Silent;
    }

 private:
    static int newSocket() { return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0); }
    const sockaddr* address() const { return reinterpret_cast<const sockaddr*>(&address_); }

    Descriptor folder_;
    QByteArray name_;
    sockaddr_un address_{};
    Descriptor socket_{newSocket()};
    bool isOpen_ = false;
};

std::expected<std::unique_ptr<SingleInstance>, SingleInstance::Refusal> SingleInstance::claim(
    const QString& folder, const QString& runtimeFolder) {
    std::array places{std::make_unique<CallSocket>(runtimeFolder, folder),
                      std::make_unique<CallSocket>(folder, folder)};
    const auto owner = [&places] {
        const auto first = places[0]->call(dashboard);
        return first == Owner::None ? places[1]->call(dashboard) : first;
    };
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        auto lock = lockOf(folder);
        const bool isHeld = !lock && lock.error() == PosixError{EWOULDBLOCK};
        const auto answer = lock ? Owner::None : owner();
        if (answer == Owner::Answering)
            return std::unexpected(Refusal::Answered);
        if (answer == Owner::Silent)
            return std::unexpected(Refusal::Silent);
        if (!isHeld) {
            auto socket = std::move(places[0]->open() || !places[1]->open() ? places[0] : places[1]);
            return std::unique_ptr<SingleInstance>(
                new SingleInstance(lock ? *std::move(lock) : Descriptor(-1), std::move(socket)));
        }
        // The other one is only starting, or just ending.
        if (std::chrono::steady_clock::now() - start > longestWait)
            return std::unexpected(Refusal::Silent);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

bool SingleInstance::isClaimed(const QString& folder) {
    const Descriptor file(
        ::open((QFile::encodeName(folder) + lockName).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    // Nobody is held up: who claims the folder in this moment tries again.
    return file && ::flock(file.fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

bool SingleInstance::call(const QString& folder, const QString& runtimeFolder, const QString& wanted) {
    return CallSocket(runtimeFolder, folder).call(wanted) == Owner::Answering ||
           CallSocket(folder, folder).call(wanted) == Owner::Answering;
}

SingleInstance::SingleInstance(Descriptor lock, std::unique_ptr<CallSocket> socket)
    : lock_(std::move(lock)), socket_(std::move(socket)) {}

SingleInstance::~SingleInstance() {
    notifier_.reset();
    socket_.reset();
}

void SingleInstance::setOnCalled(Called onCalled) {
    onCalled_ = std::move(onCalled);
    if (socket_->fd() < 0 || notifier_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(socket_->fd(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { answerCallers(); });
}

void SingleInstance::answerCallers() {
    for (;;) {
        const Descriptor caller(::accept4(socket_->fd(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!caller)
            break;
        if (!isOwnPeer(caller.fd()))
            continue;
        const auto wanted = wishOf(caller.fd());
        if (::send(caller.fd(), &greeting, 1, MSG_NOSIGNAL) == 1 && onCalled_)
            onCalled_(wanted);
    }
}

}  // namespace tavrelon::desktop
