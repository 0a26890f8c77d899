#include "desktop/linux/process/process_signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <csignal>

namespace tavrelon::desktop {

namespace {

sigset_t setOf(std::initializer_list<int> numbers) {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : numbers)
        sigaddset(&signals, number);
    return signals;
}

sigset_t terminations() {
    return setOf({SIGTERM, SIGINT, SIGHUP});
}

sigset_t watched() {
    return setOf({SIGTERM, SIGINT, SIGHUP, SIGTSTP});
}

}  // namespace

void ProcessSignals::block() {
    const auto signals = watched();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

ProcessSignals::ProcessSignals(Calls calls) : calls_(std::move(calls)) {
    block();
    const auto signals = watched();
    fd_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (fd_ < 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { handle(); });
}

void ProcessSignals::handle() {
    signalfd_siginfo info{};
    if (read(fd_, &info, sizeof info) != static_cast<ssize_t>(sizeof info))
        return;
    if (info.ssi_signo == SIGTSTP) {
        calls_.onSuspension();
        raise(SIGSTOP);
        calls_.onResumption();
        return;
    }
    const auto set = terminations();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);  // whoever asks twice does not want to wait
    calls_.onTermination();
}

ProcessSignals::~ProcessSignals() {
    notifier_.reset();
    if (fd_ >= 0)
        close(fd_);
}

}  // namespace tavrelon::desktop
