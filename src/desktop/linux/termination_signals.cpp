#include "desktop/linux/termination_signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <csignal>

namespace tavrelon::desktop {

namespace {

sigset_t terminationSet() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    return signals;
}

}  // namespace

void TerminationSignals::block() {
    const auto signals = terminationSet();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationSignals::TerminationSignals(std::function<void()> onTermination) {
    block();
    const auto signals = terminationSet();
    fd_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (fd_ < 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, onTermination = std::move(onTermination)] {
        signalfd_siginfo info{};
        if (read(fd_, &info, sizeof info) != static_cast<ssize_t>(sizeof info))
            return;
        const auto set = terminationSet();
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr);  // whoever asks twice does not want to wait
        onTermination();
    });
}

TerminationSignals::~TerminationSignals() {
    notifier_.reset();
    if (fd_ >= 0)
        close(fd_);
}

}  // namespace tavrelon::desktop
