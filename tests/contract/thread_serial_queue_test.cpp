#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "desktop/linux/process/thread_serial_queue.h"

namespace tavrelon {

namespace {

class ThreadSerialQueueTest : public ::testing::Test {
 public:
    desktop::ThreadSerialQueues threads;

    std::unique_ptr<platform::SerialQueue> create() { return threads.create(QStringLiteral("tavrelon.test")); }
};

}  // namespace

TEST_F(ThreadSerialQueueTest, BlocksRunInTheirOrderAndTheEndRunsThemAll) {
    std::vector<int> ran;  // no lock: one block at a time, and the end of the queue comes after the last
    auto queue = create();
    for (int number = 0; number < 100; ++number)
        queue->post([&ran, number, other = queue.get()] {
            ran.push_back(number);
            if (number == 50)
                other->post([&ran] { ran.push_back(1000); });
        });
    queue.reset();
    ASSERT_EQ(ran.size(), 101U);
    EXPECT_EQ(std::ranges::count(ran, 1000), 1);
    std::erase(ran, 1000);
    EXPECT_TRUE(std::ranges::is_sorted(ran));
}

TEST_F(ThreadSerialQueueTest, PostingReturnsBeforeTheBlockHasRun) {
    std::atomic<bool> released = false;
    auto queue = create();
    queue->post([&] {
        while (!released)
            std::this_thread::yield();
    });
    released = true;  // not reached if the block ran inside `post`
    queue.reset();
}

}  // namespace tavrelon
