#pragma once

#include <QString>
#include <expected>
#include <functional>
#include <memory>

#include "desktop/linux/posix_files.h"

class QSocketNotifier;

namespace tavrelon::desktop {

/// Sees to it that one process at a time works on a folder of the user's, and lets a second one call the first.
///
/// The claim is a socket whose name the kernel keeps for as long as the process lives, so that nothing is left behind
/// by a kill, and a home that cannot be written to is no obstacle. Main thread.
class SingleInstance {
 public:
    enum class Refusal {
        Answered,  ///< another process has the folder, and was told that somebody called
        Silent,    ///< another process has the folder, and does not answer
    };

    /// Waits at most two seconds for the other process. Where the system gives no such sockets, the claim is granted.
    static std::expected<std::unique_ptr<SingleInstance>, Refusal> claim(const QString& folder);

    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    /// Called from the event loop when a second process has asked for the folder.
    void setOnCalled(std::function<void()> onCalled);

 private:
    explicit SingleInstance(Descriptor socket);
    void answerCallers();

    Descriptor socket_;  ///< none where the claim was granted without one
    std::function<void()> onCalled_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tavrelon::desktop
