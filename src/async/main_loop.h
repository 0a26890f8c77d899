#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace tavrelon::async {

using Instant = std::chrono::steady_clock::time_point;

/// A scheduled block. Destroying or resetting it before it ran takes the block back; the block may destroy its own
/// timer.
class Timer {
 public:
    Timer() = default;
    explicit Timer(std::move_only_function<void()> cancel) : cancel_(std::move(cancel)) {}
    Timer(Timer&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Timer& operator=(Timer&& other) noexcept;
    ~Timer() { reset(); }

    void reset();
    explicit operator bool() const { return static_cast<bool>(cancel_); }

 private:
    std::move_only_function<void()> cancel_;
};

/// The queue of the main thread, and the only source of time for logic.
///
/// Blocks run on the main thread, one after another, in the order of their posting; none runs inside `post` or `after`.
class MainLoop {
 public:
    using Block = std::move_only_function<void()>;

    virtual ~MainLoop() = default;

    /// Runs `block` in a later turn. Any thread may call it.
    virtual void post(Block block) = 0;

    /// Runs `block` once `delay` has passed, unless the timer is dropped first. Main thread only.
    [[nodiscard]] virtual Timer after(std::chrono::nanoseconds delay, Block block) = 0;

    /// Monotonic time. Any thread.
    virtual Instant now() const = 0;

    /// The calendar's time, for records that people read. Any thread.
    virtual std::chrono::system_clock::time_point wallTime() const = 0;
};

}  // namespace tavrelon::async
