#include "support/virtual_main_loop.h"

namespace tavrelon::testing {

void VirtualMainLoop::post(Block block) {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(block));
}

async::Timer VirtualMainLoop::after(std::chrono::nanoseconds delay, Block block) {
    const std::pair key(now_ + std::max(delay, std::chrono::nanoseconds::zero()), nextTimer_++);
    timers_.emplace(key, std::move(block));
    return async::Timer([this, key] { timers_.erase(key); });
}

std::chrono::system_clock::time_point VirtualMainLoop::wallTime() const {
    constexpr std::chrono::sys_days start = std::chrono::year(2026) / 11 / 24;
    return std::chrono::system_clock::time_point(start) +
           std::chrono::duration_cast<std::chrono::system_clock::duration>(now_.time_since_epoch());
}

void VirtualMainLoop::runTurn() {
    std::deque<Block> turn;
    {
        const std::lock_guard lock(mutex_);
        turn.swap(queue_);
    }
    for (auto& block : turn)
        block();
}

void VirtualMainLoop::runDueTimers() {
    while (!timers_.empty() && timers_.begin()->first.first <= now_) {
        auto block = std::move(timers_.begin()->second);
        timers_.erase(timers_.begin());
        block();
    }
}

void VirtualMainLoop::runUntilIdle() {
    for (;;) {
        runDueTimers();
        {
            const std::lock_guard lock(mutex_);
            if (queue_.empty())
                return;
        }
        runTurn();
    }
}

void VirtualMainLoop::advance(std::chrono::nanoseconds duration) {
    const auto end = now_ + duration;
    runUntilIdle();
    while (!timers_.empty() && timers_.begin()->first.first <= end) {
        now_ = timers_.begin()->first.first;
        runUntilIdle();
    }
    now_ = end;
}

void VirtualMainLoop::runToEnd(std::chrono::nanoseconds limit) {
    const auto end = now_ + limit;
    runUntilIdle();
    while (!timers_.empty() && timers_.begin()->first.first <= end) {
        now_ = timers_.begin()->first.first;
        runUntilIdle();
    }
}

}  // namespace tavrelon::testing
