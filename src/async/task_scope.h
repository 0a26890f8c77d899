#pragma once

#include <cstdint>
#include <map>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "async/task.h"

namespace tavrelon::async {

/// What the starter of a task keeps of it. Dropping it neither stops nor ends the task.
class TaskHandle {
 public:
    explicit TaskHandle(CancellationRef cancellation) : cancellation_(std::move(cancellation)) {}
    void cancel() const { cancellation_->request(); }
    bool isCancelled() const { return cancellation_->requested(); }

 private:
    CancellationRef cancellation_;
};

/// Owns the tasks that nobody awaits. They run on the main thread from the turn after their spawning and end with the
/// scope at the latest, so a task never outlives what it refers to.
class TaskScope {
 public:
    explicit TaskScope(MainLoop& loop) : loop_(loop) {}
    TaskScope(const TaskScope&) = delete;
    TaskScope& operator=(const TaskScope&) = delete;

    /// A task must deal with its own errors; one that escapes ends the process, since nobody is there to hear it.
    TaskHandle spawn(Task<void> body);

    std::size_t runningCount() const { return tasks_.size(); }

 private:
    Task<void> run(Task<void> body, std::uint64_t id);

    MainLoop& loop_;
    std::uint64_t nextId_ = 1;
    std::map<std::uint64_t, Task<void>> tasks_;
    Lifetime lifetime_;
};

}  // namespace tavrelon::async
