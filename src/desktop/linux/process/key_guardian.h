#pragma once

#include <chrono>
#include <optional>

#include "platform/log.h"

namespace tavrelon::desktop {

/// Says that a living process answers for the keys that this session holds for the program. The kernel drops it with
/// the process.
class KeyClaim {
 public:
    /// Absent where another process still has it after `patience`, or the session has no folder to keep it in.
    static std::optional<KeyClaim> take(std::chrono::milliseconds patience);

    KeyClaim(KeyClaim&& other) noexcept : file_(other.file_) { other.file_ = -1; }
    KeyClaim& operator=(KeyClaim&&) = delete;
    ~KeyClaim();

 private:
    explicit KeyClaim(int file) : file_(file) {}

    int file_;
};

/// A process that outlives this one. Compositors withhold a hotkey from all windows until the program gives it back,
/// which a program that is killed cannot do. The guardian knows nothing but that this process lives; once it does not,
/// and has not dismissed the guardian, the program is started with --let-keys-go.
class KeyGuardian {
 public:
    /// Where it cannot be started the log says so, and everything else goes on. May wait, a second at most, for one
    /// that gives back what an earlier process has left.
    explicit KeyGuardian(platform::Log& log);
    KeyGuardian(const KeyGuardian&) = delete;
    KeyGuardian& operator=(const KeyGuardian&) = delete;
    ~KeyGuardian();

    /// All keys have been given back.
    void dismiss();

 private:
    bool start();

    std::optional<KeyClaim> claim_;
    int end_ = -1;  ///< of a pipe, which closes with this process
};

}  // namespace tavrelon::desktop
