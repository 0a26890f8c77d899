#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace tavrelon::desktop {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the program can end in order. A second
/// signal ends it at once.
class TerminationSignals {
 public:
    /// Holds the signals back from the calling thread and from all that it starts. Call it before any thread starts;
    /// the toolkit starts some of its own.
    static void block();

    explicit TerminationSignals(std::function<void()> onTermination);
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    ~TerminationSignals();

 private:
    int fd_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tavrelon::desktop
