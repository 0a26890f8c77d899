#pragma once

#include <concepts>
#include <coroutine>
#include <exception>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

#include "async/cancellation.h"

namespace tavrelon::async {

template <typename T>
class Task;

/// What every coroutine of ours carries: who continues when it ends, and the request to stop that it shares with its
/// awaiter.
class PromiseBase {
 public:
    std::coroutine_handle<> continuation = std::noop_coroutine();
    CancellationRef cancellation;

    std::suspend_always initial_suspend() noexcept { return {}; }

    auto final_suspend() noexcept {
        struct Final {
            std::coroutine_handle<> next;
            bool await_ready() noexcept { return false; }
            std::coroutine_handle<> await_suspend(std::coroutine_handle<>) noexcept { return next; }
            void await_resume() noexcept {}
        };
        return Final{continuation};
    }
};

template <typename P>
concept TaskPromise = std::derived_from<P, PromiseBase>;

template <typename T>
class Promise : public PromiseBase {
 public:
    Task<T> get_return_object();
    void unhandled_exception() { outcome_.template emplace<2>(std::current_exception()); }
    template <typename U>
    void return_value(U&& value) {
        outcome_.template emplace<1>(std::forward<U>(value));
    }
    T take() {
        if (outcome_.index() == 2)
            std::rethrow_exception(std::get<2>(outcome_));
        return std::move(std::get<1>(outcome_));
    }

 private:
    std::variant<std::monostate, T, std::exception_ptr> outcome_;
};

template <>
class Promise<void> : public PromiseBase {
 public:
    Task<void> get_return_object();
    void unhandled_exception() { error_ = std::current_exception(); }
    void return_void() {}
    void take() {
        if (error_)
            std::rethrow_exception(error_);
    }

 private:
    std::exception_ptr error_;
};

/// A lazy coroutine with a single owner: it starts when it is awaited (or given to a `TaskScope`), shares its awaiter's
/// cancellation, and ends with its owner. Destroying an unfinished task destroys its frame: waits detach, locals
/// unwind.
template <typename T = void>
class [[nodiscard]] Task {
 public:
    using promise_type = Promise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    explicit Task(Handle handle) : handle_(handle) {}
    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
    Task& operator=(Task&& other) noexcept {
        if (this != &other) {
            destroy();
            handle_ = std::exchange(other.handle_, {});
        }
        return *this;
    }
    ~Task() { destroy(); }

    class Awaiter {
     public:
        explicit Awaiter(Handle handle) : handle_(handle) {}
        bool await_ready() noexcept { return false; }
        template <TaskPromise P>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<P> awaiting) noexcept {
            handle_.promise().continuation = awaiting;
            handle_.promise().cancellation = awaiting.promise().cancellation;
            return handle_;
        }
        T await_resume() { return handle_.promise().take(); }

     private:
        Handle handle_;
    };
    Awaiter operator co_await() && noexcept { return Awaiter(handle_); }

    /// Runs the task up to its first wait, outside of any awaiter. For scopes and races, which keep the task alive.
    void start(CancellationRef cancellation) {
        handle_.promise().cancellation = std::move(cancellation);
        handle_.resume();
    }
    bool done() const { return handle_.done(); }
    void continueWith(std::coroutine_handle<> next) { handle_.promise().continuation = next; }
    T result() { return handle_.promise().take(); }

 private:
    void destroy() {
        if (auto handle = std::exchange(handle_, {}))
            handle.destroy();
    }
    Handle handle_;
};

template <typename T>
Task<T> Promise<T>::get_return_object() {
    return Task<T>(std::coroutine_handle<Promise>::from_promise(*this));
}
inline Task<void> Promise<void>::get_return_object() {
    return Task<void>(std::coroutine_handle<Promise>::from_promise(*this));
}

/// `co_await currentCancellation()` gives the running task's own request to stop, without a wait. Never null inside a
/// task that a scope started.
struct CurrentCancellation {
    CancellationRef found;
    bool await_ready() noexcept { return false; }
    template <TaskPromise P>
    bool await_suspend(std::coroutine_handle<P> awaiting) noexcept {
        found = awaiting.promise().cancellation;
        return false;
    }
    CancellationRef await_resume() noexcept { return std::move(found); }
};
inline CurrentCancellation currentCancellation() {
    return {};
}

/// A child task that runs beside its parent from the moment it is made; awaiting it gives its result or rethrows its
/// error. It is cancelled with the parent and ends with this object.
template <typename T>
class Concurrent {
 public:
    Concurrent(Task<T> task, const CancellationRef& parent)
        : cancellation_(Cancellation::linkedTo(parent)), task_(std::move(task)) {
        task_.start(cancellation_);
    }

    class Awaiter {
     public:
        explicit Awaiter(Task<T>& task) : task_(task) {}
        bool await_ready() noexcept { return task_.done(); }
        template <TaskPromise P>
        void await_suspend(std::coroutine_handle<P> awaiting) noexcept {
            task_.continueWith(awaiting);
        }
        T await_resume() { return task_.result(); }

     private:
        Task<T>& task_;
    };
    Awaiter operator co_await() && noexcept { return Awaiter(task_); }

 private:
    CancellationRef cancellation_;
    Task<T> task_;
};

}  // namespace tavrelon::async
