#pragma once

#include <QString>
#include <expected>
#include <functional>
#include <memory>

#include "desktop/linux/files/posix_files.h"

class QSocketNotifier;

namespace tavrelon::desktop {

/// Sees to it that one process at a time works on a folder of the user's, and lets a second one call the first.
///
/// The claim is a lock in the folder, which the kernel drops with the process; so a kill leaves nothing in the way.
/// Calls go through a socket in a folder that the user alone can enter. Nobody else can take the lock or the socket,
/// and both ends ask whose process the other one is. Main thread.
class SingleInstance {
 public:
    enum class Refusal {
        Answered,  ///< another process has the folder, and was told that somebody called
        Silent,    ///< another process has the folder, and does not answer
    };

    /// The socket is made in `runtimeFolder` ($XDG_RUNTIME_DIR) if that is the user's alone, else in `folder`. Waits
    /// about two seconds for the other process. Where `folder` cannot be locked, the claim is granted unless somebody
    /// answers at the socket.
    static std::expected<std::unique_ptr<SingleInstance>, Refusal> claim(const QString& folder,
                                                                         const QString& runtimeFolder);

    /// Whether a process has the folder, asked without a word to it.
    static bool isClaimed(const QString& folder);

    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    /// What a second process wants that was started for nothing in particular.
    static constexpr QLatin1StringView dashboard{"dashboard"};

    /// Tells the process that has the folder what is wanted: a word of at most 32 bytes. False when none answers.
    static bool call(const QString& folder, const QString& runtimeFolder, const QString& wanted);

    /// Called from the event loop when a second process has called, with what it wants.
    using Called = std::function<void(const QString& wanted)>;
    void setOnCalled(Called onCalled);

 private:
    class CallSocket;

    SingleInstance(Descriptor lock, std::unique_ptr<CallSocket> socket);
    void answerCallers();

    Descriptor lock_;  ///< none where the folder cannot be locked
    std::unique_ptr<CallSocket> socket_;
    Called onCalled_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tavrelon::desktop
