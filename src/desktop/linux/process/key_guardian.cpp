#include "desktop/linux/process/key_guardian.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <csignal>
#include <thread>

namespace tavrelon::desktop {

namespace {

/// An earlier process's guardian takes as long as a start and a few calls.
constexpr std::chrono::milliseconds claimPatience{1000};
constexpr std::chrono::milliseconds claimRhythm{5};

/// One for each compositor of the user's.
QByteArray claimPath() {
    const auto folder = qgetenv("XDG_RUNTIME_DIR");
    const auto display = QFileInfo(qEnvironmentVariable("WAYLAND_DISPLAY")).fileName();
    return folder.isEmpty() ? folder : folder + "/tavrelon-key-claim-" + QFile::encodeName(display);
}

}  // namespace

std::optional<KeyClaim> KeyClaim::take(std::chrono::milliseconds patience) {
    const auto path = claimPath();
    const int file = path.isEmpty() ? -1 : ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0)
        return std::nullopt;
    KeyClaim claim(file);
    const auto until = std::chrono::steady_clock::now() + patience;
    while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (std::chrono::steady_clock::now() >= until)
            return std::nullopt;
        std::this_thread::sleep_for(claimRhythm);
    }
    return claim;
}

KeyClaim::~KeyClaim() {
    if (file_ >= 0)
        ::close(file_);
}

KeyGuardian::KeyGuardian(platform::Log& log) : claim_(KeyClaim::take(claimPatience)) {
    if (!start())
        log.line(
            QStringLiteral("[Hotkey] No guardian: if Tavrelon is killed, its hotkeys reach no window until its "
                           "next start"));
}

KeyGuardian::~KeyGuardian() {
    if (end_ >= 0)
        ::close(end_);
}

bool KeyGuardian::start() {
    const auto folder = QFile::encodeName(QCoreApplication::applicationDirPath());
    auto guardian = folder + "/key-guardian";
    auto program = folder + "/tavrelon";
    // A socket rather than a pipe: to write into one whose other end has gone is then no signal.
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_adddup2(&files, ends[1], STDIN_FILENO);
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t none;
    ::sigemptyset(&none);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    // In a session of its own: what a terminal sends to the program is not for the guardian.
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
    char* const arguments[] = {guardian.data(), program.data(), nullptr};
    pid_t process = 0;
    const bool isStarted = ::posix_spawn(&process, guardian.constData(), &files, &attributes, arguments, environ) == 0;
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    ::close(ends[1]);
    if (isStarted)
        end_ = ends[0];
    else
        ::close(ends[0]);
    return isStarted;
}

void KeyGuardian::dismiss() {
    const char word = 0;
    if (end_ >= 0)
        static_cast<void>(::send(end_, &word, sizeof word, MSG_NOSIGNAL));
}

}  // namespace tavrelon::desktop
