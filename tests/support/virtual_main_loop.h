#pragma once

#include <deque>
#include <map>
#include <mutex>

#include "async/main_loop.h"

namespace tavrelon::testing {

/// A main loop whose time stands still until a test moves it. Blocks run only inside `run…` and `advance`.
class VirtualMainLoop : public async::MainLoop {
 public:
    void post(Block block) override;
    async::Timer after(std::chrono::nanoseconds delay, Block block) override;
    async::Instant now() const override { return now_; }
    std::chrono::system_clock::time_point wallTime() const override;

    /// Runs exactly the blocks that are queued at the moment: one turn.
    void runTurn();

    /// Runs turns until no block is queued. Time stands still; timers that are due run too.
    void runUntilIdle();

    /// Moves the time forward, running every timer and block on the way at its own moment.
    void advance(std::chrono::nanoseconds duration);

    /// Advances from timer to timer until neither a block nor a timer is left, at most for `limit`.
    void runToEnd(std::chrono::nanoseconds limit = std::chrono::minutes(10));

    bool hasTimers() const { return !timers_.empty(); }

 private:
    void runDueTimers();

    std::mutex mutex_;  // guards queue_: post may come from any thread
    std::deque<Block> queue_;
    async::Instant now_{std::chrono::hours(1)};
    std::uint64_t nextTimer_ = 0;
    std::map<std::pair<async::Instant, std::uint64_t>, Block> timers_;
};

}  // namespace tavrelon::testing
