#include "async/task.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "async/task_scope.h"
#include "async/waits.h"
#include "support/run_task.h"

namespace tavrelon::async {

using namespace std::chrono_literals;
using tavrelon::testing::runTask;
using tavrelon::testing::VirtualMainLoop;

struct Witness {
    int& destroyed;
    ~Witness() { ++destroyed; }
};

class TaskTest : public ::testing::Test {
 public:
    VirtualMainLoop loop;
    std::vector<std::string> events;

    Task<int> slowly(int value, std::chrono::nanoseconds length) {
        co_await pause(loop, length);
        co_return value;
    }
    Task<void> note(const char* name, std::chrono::nanoseconds length) {
        try {
            co_await pause(loop, length);
            events.emplace_back(name);
        } catch (const CancellationError&) {
            events.push_back(std::string(name) + " cancelled");
            throw;
        }
    }
};

TEST_F(TaskTest, ResultsAndErrorsTravelToTheAwaiter) {
    const auto sum = [](TaskTest& test) -> Task<int> {
        co_return co_await test.slowly(1, 5ms) + co_await test.slowly(2, 5ms);
    };
    const auto start = loop.now();
    EXPECT_EQ(runTask(loop, sum(*this)), 3);
    EXPECT_EQ(loop.now() - start, 10ms);

    const auto failing = []() -> Task<bool> {
        throw std::runtime_error("no");
        co_return true;
    };
    EXPECT_THROW(runTask(loop, failing()), std::runtime_error);
}

TEST_F(TaskTest, CancellationReachesTheInnermostWaitAndComesBackAsAnError) {
    TaskScope scope(loop);
    const auto outer = [](TaskTest& test) -> Task<void> {
        co_await test.note("inner", 1s);
        test.events.emplace_back("never");
    };
    const auto handle = scope.spawn(outer(*this));
    loop.advance(100ms);
    handle.cancel();
    EXPECT_TRUE(events.empty()) << "a request to stop must not run the task inside the caller";
    loop.runUntilIdle();
    EXPECT_EQ(events, std::vector<std::string>{"inner cancelled"});
    EXPECT_EQ(scope.runningCount(), 0U);
    EXPECT_FALSE(loop.hasTimers());
}

TEST_F(TaskTest, AScopeThatEndsTakesItsTasksAlong) {
    int destroyed = 0;
    const auto body = [](TaskTest& test, int& count) -> Task<void> {
        const Witness witness{count};
        co_await test.note("never", 1s);
    };
    {
        TaskScope scope(loop);
        scope.spawn(body(*this, destroyed));
        loop.runUntilIdle();
        EXPECT_EQ(scope.runningCount(), 1U);
    }
    EXPECT_EQ(destroyed, 1);
    loop.runToEnd();
    EXPECT_TRUE(events.empty());
}

TEST_F(TaskTest, RaceGivesTheResultOrTheDeadline) {
    EXPECT_EQ(runTask(loop,
                      [](TaskTest& test) -> Task<int> {
                          co_return co_await raceWithDeadline(test.loop, 30s, test.slowly(7, 29s));
                      }(*this)),
              7);
    const auto late = [](TaskTest& test) -> Task<void> {
        co_await raceWithDeadline(test.loop, 30s, test.note("late", 31s));
    };
    const auto start = loop.now();
    EXPECT_THROW(runTask(loop, late(*this)), DeadlineExceeded);
    EXPECT_EQ(loop.now() - start, 30s);
    EXPECT_FALSE(loop.hasTimers()) << "the loser is gone, not merely forgotten";
    EXPECT_EQ(std::count(events.begin(), events.end(), "late"), 0);
}

class CallbackTest : public TaskTest {
 protected:
    struct Operation {
        bool* aborted;
        explicit Operation(bool& flag) : aborted(&flag) {}
        Operation(Operation&& other) noexcept : aborted(std::exchange(other.aborted, nullptr)) {}
        Operation& operator=(Operation&&) = delete;
        ~Operation() {
            if (aborted)
                *aborted = true;
        }
    };
    bool ended = false;
    std::move_only_function<void(int)> answer;

    Task<void> asking() {
        try {
            const int value = co_await fromCallback<int>(loop, [this](auto resolver) {
                answer = [resolver](int v) mutable { resolver.resolve(v); };
                return Operation(ended);
            });
            events.push_back(std::to_string(value));
        } catch (const CancellationError&) {
            events.emplace_back("cancelled");
        }
    }
};

TEST_F(CallbackTest, AnAnswerFromAnotherThreadResumesOnceInALaterTurn) {
    TaskScope scope(loop);
    scope.spawn(asking());
    loop.runUntilIdle();
    std::thread([this] {
        answer(4);
        answer(5);
    }).join();
    EXPECT_TRUE(events.empty());
    loop.runUntilIdle();
    EXPECT_EQ(events, std::vector<std::string>{"4"});
    EXPECT_TRUE(ended);
}

TEST_F(CallbackTest, CancellationAbortsTheOperationAndLateAnswersDoNothing) {
    TaskScope scope(loop);
    const auto handle = scope.spawn(asking());
    loop.runUntilIdle();
    handle.cancel();
    EXPECT_TRUE(ended);
    loop.runUntilIdle();
    answer(4);
    loop.runUntilIdle();
    EXPECT_EQ(events, std::vector<std::string>{"cancelled"});
}

}  // namespace tavrelon::async
