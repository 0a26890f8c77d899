#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace tavrelon::desktop {

/// Turns the signals by which a user ends or stops a program into calls on the main thread, so that it can do either in
/// order.
class ProcessSignals {
 public:
    struct Calls {
        std::function<void()> onTermination;  ///< SIGTERM, SIGINT, SIGHUP; a second one ends the process at once
        std::function<void()> onSuspension;   ///< Ctrl+Z in the terminal: the process stops when this returns
        std::function<void()> onResumption;   ///< it goes on
    };

    /// Holds the signals back from the calling thread and from all that it starts. Call it before any thread starts;
    /// the toolkit starts some of its own.
    static void block();

    explicit ProcessSignals(Calls calls);
    ProcessSignals(const ProcessSignals&) = delete;
    ProcessSignals& operator=(const ProcessSignals&) = delete;
    ~ProcessSignals();

 private:
    void handle();

    Calls calls_;
    int fd_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tavrelon::desktop
