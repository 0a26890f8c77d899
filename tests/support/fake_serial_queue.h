#pragma once

#include <deque>

#include "async/main_loop.h"
#include "platform/serial_queue.h"

namespace tavrelon::testing {

/// A queue whose blocks run on a main loop, one in a turn, so that a test moves it with the virtual time.
class FakeSerialQueue : public platform::SerialQueue {
 public:
    explicit FakeSerialQueue(async::MainLoop& loop) : loop_(loop) {}
    ~FakeSerialQueue() override {
        while (runOne(*blocks_)) {
        }
    }

    void post(Block block) override {
        blocks_->push_back(std::move(block));
        loop_.post([blocks = std::weak_ptr(blocks_)] {
            if (const auto alive = blocks.lock())
                runOne(*alive);
        });
    }

 private:
    static bool runOne(std::deque<Block>& blocks) {
        if (blocks.empty())
            return false;
        auto block = std::move(blocks.front());
        blocks.pop_front();
        block();
        return true;
    }

    async::MainLoop& loop_;
    std::shared_ptr<std::deque<Block>> blocks_ = std::make_shared<std::deque<Block>>();
};

class FakeSerialQueues : public platform::SerialQueues {
 public:
    explicit FakeSerialQueues(async::MainLoop& loop) : loop_(loop) {}

    std::unique_ptr<platform::SerialQueue> create(const QString&) override {
        return std::make_unique<FakeSerialQueue>(loop_);
    }

 private:
    async::MainLoop& loop_;
};

}  // namespace tavrelon::testing
