#include "desktop/linux/process/thread_serial_queue.h"

#include <pthread.h>

namespace tavrelon::desktop {

namespace {

constexpr qsizetype longestThreadName = 15;  // bytes; the kernel takes no more

}  // namespace

ThreadSerialQueue::ThreadSerialQueue(const QString& label) : thread_([this] { run(); }) {
    // The end of a label tells more than its beginning, which is the program's name.
    ::pthread_setname_np(thread_.native_handle(), label.toLatin1().last(std::min(longestThreadName, label.size())));
}

ThreadSerialQueue::~ThreadSerialQueue() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void ThreadSerialQueue::post(Block block) {
    {
        const std::lock_guard lock(mutex_);
        blocks_.push_back(std::move(block));
    }
    changed_.notify_one();
}

void ThreadSerialQueue::run() {
    for (;;) {
        Block block;
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [this] { return ending_ || !blocks_.empty(); });
            if (blocks_.empty())
                return;
            block = std::move(blocks_.front());
            blocks_.pop_front();
        }
        block();
    }
}

}  // namespace tavrelon::desktop
