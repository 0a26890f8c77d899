#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "platform/serial_queue.h"

namespace tavrelon::desktop {

/// A queue with a thread of its own, which sleeps while there is nothing to run.
class ThreadSerialQueue : public platform::SerialQueue {
 public:
    explicit ThreadSerialQueue(const QString& label);
    ~ThreadSerialQueue() override;

    void post(Block block) override;

 private:
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Block> blocks_;
    bool ending_ = false;
    std::thread thread_;
};

class ThreadSerialQueues : public platform::SerialQueues {
 public:
    std::unique_ptr<platform::SerialQueue> create(const QString& label) override {
        return std::make_unique<ThreadSerialQueue>(label);
    }
};

}  // namespace tavrelon::desktop
