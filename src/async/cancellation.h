#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>

namespace tavrelon::async {

/// Thrown out of a wait whose task was asked to stop.
class CancellationError : public std::exception {
 public:
    const char* what() const noexcept override { return "The operation was cancelled."; }
};

/// One request to stop, shared by a task and all that it awaits. It is a request only: the task ends at its next wait
/// or check. Main thread.
class Cancellation : public std::enable_shared_from_this<Cancellation> {
 public:
    /// Keeps a block registered; destroying it takes the block back.
    class Registration {
     public:
        Registration() = default;
        Registration(std::weak_ptr<Cancellation> owner, std::uint64_t id) : owner_(std::move(owner)), id_(id) {}
        Registration(Registration&&) noexcept = default;
        Registration& operator=(Registration&& other) noexcept;
        ~Registration() { reset(); }
        void reset();

     private:
        std::weak_ptr<Cancellation> owner_;
        std::uint64_t id_ = 0;
    };

    static std::shared_ptr<Cancellation> create() { return std::make_shared<Cancellation>(); }

    /// A request of its own that is also made when `parent`'s is; the other way it does not travel.
    static std::shared_ptr<Cancellation> linkedTo(const std::shared_ptr<Cancellation>& parent);

    bool requested() const { return requested_; }

    /// Makes the request and runs the registered blocks, once.
    void request();

    /// Registers `block` to run inside `request`. If the request was already made, nothing is registered: ask
    /// `requested()` first.
    [[nodiscard]] Registration onRequest(std::move_only_function<void()> block);

 private:
    bool requested_ = false;
    std::uint64_t nextId_ = 1;
    std::map<std::uint64_t, std::move_only_function<void()>> blocks_;
    Registration parent_;
};

using CancellationRef = std::shared_ptr<Cancellation>;

}  // namespace tavrelon::async
