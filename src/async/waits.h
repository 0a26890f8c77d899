#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

#include "async/main_loop.h"
#include "async/task.h"

namespace tavrelon::async {

/// `co_await pause(loop, 50ms)`: gives the thread back for that long. Throws `CancellationError` as soon as the task is
/// asked to stop, at once if it already was.
class Pause {
 public:
    Pause(MainLoop& loop, std::chrono::nanoseconds length) : loop_(loop), length_(length) {}

    bool await_ready() noexcept { return false; }
    template <TaskPromise P>
    bool await_suspend(std::coroutine_handle<P> awaiting) {
        const auto& cancellation = awaiting.promise().cancellation;
        if (cancellation && cancellation->requested()) {
            cancelled_ = true;
            return false;
        }
        timer_ = loop_.after(length_, [awaiting] { awaiting.resume(); });
        if (cancellation)
            registration_ = cancellation->onRequest([this, awaiting] {
                cancelled_ = true;
                timer_ = loop_.after(std::chrono::nanoseconds::zero(), [awaiting] { awaiting.resume(); });
            });
        return true;
    }
    void await_resume() {
        if (cancelled_)
            throw CancellationError();
    }

 private:
    MainLoop& loop_;
    std::chrono::nanoseconds length_;
    bool cancelled_ = false;
    Timer timer_;
    Cancellation::Registration registration_;
};
inline Pause pause(MainLoop& loop, std::chrono::nanoseconds length) {
    return {loop, length};
}

/// Awaits `wait` and goes on as if it had succeeded when it was cut short by a cancellation.
template <typename Wait>
Task<void> ignoringCancellation(Wait wait) {
    try {
        co_await std::move(wait);
    } catch (const CancellationError&) {  // the caller's next check finds the cancellation
    }
}

/// Awaits a task that must not be cut short: it runs to its own end whatever is asked of the awaiting one. For work
/// that puts something back, and only where that work is bounded.
template <typename T>
class Shielded {
 public:
    explicit Shielded(Task<T> task) : task_(std::move(task)) {}
    bool await_ready() noexcept { return false; }
    template <TaskPromise P>
    bool await_suspend(std::coroutine_handle<P> awaiting) {
        task_.start(Cancellation::create());
        if (task_.done())
            return false;
        task_.continueWith(awaiting);
        return true;
    }
    T await_resume() { return task_.result(); }

 private:
    Task<T> task_;
};
template <typename T>
Shielded<T> shielded(Task<T> task) {
    return Shielded<T>(std::move(task));
}

/// Thrown by `raceWithDeadline` when the deadline came first.
class DeadlineExceeded : public std::exception {
 public:
    const char* what() const noexcept override { return "The deadline passed."; }
};

/// Awaits `request` for at most `limit`. Whichever ends first decides; past the limit the request is cancelled and its
/// frame destroyed before `DeadlineExceeded` is thrown. A cancellation of the awaiting task reaches the request.
template <typename T>
class RaceWithDeadline {
 public:
    RaceWithDeadline(MainLoop& loop, std::chrono::nanoseconds limit, Task<T> request)
        : loop_(loop), limit_(limit), request_(std::move(request)) {}

    bool await_ready() noexcept { return false; }
    template <TaskPromise P>
    bool await_suspend(std::coroutine_handle<P> awaiting) {
        cancellation_ = Cancellation::linkedTo(awaiting.promise().cancellation);
        request_->start(cancellation_);
        if (request_->done())
            return false;
        request_->continueWith(awaiting);
        timer_ = loop_.after(limit_, [this, awaiting] {
            request_->continueWith(std::noop_coroutine());
            cancellation_->request();
            request_.reset();
            awaiting.resume();
        });
        return true;
    }
    T await_resume() {
        timer_.reset();
        if (!request_)
            throw DeadlineExceeded();
        return request_->result();
    }

 private:
    MainLoop& loop_;
    std::chrono::nanoseconds limit_;
    CancellationRef cancellation_;
    std::optional<Task<T>> request_;
    Timer timer_;
};
template <typename T>
RaceWithDeadline<T> raceWithDeadline(MainLoop& loop, std::chrono::nanoseconds limit, Task<T> request) {
    return {loop, limit, std::move(request)};
}

/// A wait for a callback: the bridge from a port's asynchronous machinery to a task.
///
/// `begin` gets a `Resolver` and returns an owner of the operation under way (any movable object whose destruction
/// aborts it). The first `resolve` wins; it may come from any thread and resumes the task in a later turn of the main
/// loop. On cancellation the owner is destroyed and the wait throws; late answers do nothing.
template <typename T, typename Begin>
class CallbackWait {
    struct State {
        std::optional<T> value;
        std::coroutine_handle<> awaiting;
        bool resumed = false;
        void resume() {
            if (awaiting && !std::exchange(resumed, true))
                awaiting.resume();
        }
    };

 public:
    class Resolver {
     public:
        Resolver(MainLoop& loop, std::weak_ptr<State> state) : loop_(&loop), state_(std::move(state)) {}
        void resolve(T value) {
            loop_->post([state = state_, value = std::move(value)]() mutable {
                if (auto alive = state.lock(); alive && !alive->value) {
                    alive->value.emplace(std::move(value));
                    alive->resume();
                }
            });
        }

     private:
        MainLoop* loop_;
        std::weak_ptr<State> state_;
    };

    CallbackWait(MainLoop& loop, Begin begin) : loop_(loop), begin_(std::move(begin)) {}

    bool await_ready() noexcept { return false; }
    template <TaskPromise P>
    bool await_suspend(std::coroutine_handle<P> awaiting) {
        const auto& cancellation = awaiting.promise().cancellation;
        if (cancellation && cancellation->requested())
            return false;
        state_->awaiting = awaiting;
        if (cancellation)
            registration_ = cancellation->onRequest([this] {
                operation_.reset();
                loop_.post([weak = std::weak_ptr(state_)] {
                    if (auto alive = weak.lock())
                        alive->resume();
                });
            });
        operation_.emplace(begin_(Resolver(loop_, state_)));
        return true;
    }
    T await_resume() {
        operation_.reset();
        if (!state_->value)
            throw CancellationError();
        return std::move(*state_->value);
    }

 private:
    using Operation = std::invoke_result_t<Begin&, Resolver>;
    MainLoop& loop_;
    Begin begin_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
    std::optional<Operation> operation_;
    Cancellation::Registration registration_;
};
template <typename T, typename Begin>
CallbackWait<T, Begin> fromCallback(MainLoop& loop, Begin begin) {
    return {loop, std::move(begin)};
}

}  // namespace tavrelon::async
