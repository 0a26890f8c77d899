#include "desktop/audio/worker_threads.h"

#include <pthread.h>

#include <chrono>

namespace tavrelon::desktop {

void WorkerThreads::start(const char* name, std::move_only_function<void()> work) {
    forgetEnded();
    auto ended = std::make_shared<std::atomic<bool>>(false);
    std::thread thread([ended, work = std::move(work)]() mutable {
        work();
        work = nullptr;  // what it holds goes before the thread counts as ended
        *ended = true;
    });
    ::pthread_setname_np(thread.native_handle(), name);
    workers_.push_back({std::move(thread), std::move(ended)});
}

void WorkerThreads::forgetEnded() {
    std::erase_if(workers_, [](Worker& worker) {
        if (!*worker.ended)
            return false;
        worker.thread.join();
        return true;
    });
}

WorkerThreads::~WorkerThreads() {
    const auto end = std::chrono::steady_clock::now() + endLimit;
    forgetEnded();
    while (!workers_.empty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        forgetEnded();
    }
    for (auto& worker : workers_)
        worker.thread.detach();
}

}  // namespace tavrelon::desktop
