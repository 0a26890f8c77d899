#pragma once

#include <chrono>

namespace tavrelon::desktop {

/// When modifiers were posted last; a press of theirs that is told soon after is no person's. Main thread.
class OwnPosts {
 public:
    using Clock = std::chrono::steady_clock;
    /// A press is told within a millisecond; the rest is for a busy machine.
    static constexpr std::chrono::milliseconds memory{100};

    void note() { last_ = Clock::now(); }
    bool isRecent() const { return last_ != Clock::time_point() && Clock::now() - last_ < memory; }

 private:
    Clock::time_point last_;
};

}  // namespace tavrelon::desktop
