#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace tavrelon::desktop {

/// Threads that end by themselves and that nobody waits for while the program runs. Main thread.
class WorkerThreads {
 public:
    WorkerThreads() = default;
    WorkerThreads(const WorkerThreads&) = delete;
    WorkerThreads& operator=(const WorkerThreads&) = delete;

    /// Waits until all have ended; a thread that a library holds up for `endLimit` is left behind.
    ~WorkerThreads();

    /// Runs `work` on a thread of its own. What it refers to must be its own: it may outlive this object. `name` is for
    /// people who look at the process, at most 15 bytes.
    void start(const char* name, std::move_only_function<void()> work);

    static constexpr std::chrono::seconds endLimit{2};

 private:
    struct Worker {
        std::thread thread;
        std::shared_ptr<std::atomic<bool>> ended;
    };

    void forgetEnded();

    std::vector<Worker> workers_;
};

}  // namespace tavrelon::desktop
