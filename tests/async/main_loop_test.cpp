#include "async/main_loop.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <thread>
#include <vector>

#include "desktop/qt/qt_main_loop.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::async {

using namespace std::chrono_literals;

/// One suite for the production loop and the virtual one, so that the virtual one cannot lie.
struct QtDriver {
    desktop::QtMainLoop loop;
    void runFor(std::chrono::milliseconds duration) {
        const QDeadlineTimer end(duration);
        while (!end.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    }
};
struct VirtualDriver {
    tavrelon::testing::VirtualMainLoop loop;
    void runFor(std::chrono::milliseconds duration) { loop.advance(duration); }
};

template <typename Driver>
class MainLoopTest : public ::testing::Test {
 protected:
    Driver driver;
    std::vector<int> order;
};
using Drivers = ::testing::Types<QtDriver, VirtualDriver>;
TYPED_TEST_SUITE(MainLoopTest, Drivers);

TYPED_TEST(MainLoopTest, BlocksRunLaterAndInOrder) {
    auto& loop = this->driver.loop;
    auto& order = this->order;
    loop.post([&] {
        order.push_back(1);
        loop.post([&] { order.push_back(3); });
    });
    std::thread([&] { loop.post([&] { order.push_back(2); }); }).join();
    EXPECT_TRUE(order.empty());
    this->driver.runFor(20ms);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TYPED_TEST(MainLoopTest, TimersRunInTheOrderOfTheirTimesAndCanBeTakenBack) {
    auto& loop = this->driver.loop;
    auto& order = this->order;
    const auto start = loop.now();
    auto late = loop.after(60ms, [&] { order.push_back(2); });
    auto early = loop.after(20ms, [&] {
        order.push_back(1);
        EXPECT_GE(loop.now() - start, 20ms);
    });
    auto dropped = loop.after(10ms, [&] { order.push_back(9); });
    dropped.reset();
    {
        auto shortLived = loop.after(10ms, [&] { order.push_back(8); });
    }
    this->driver.runFor(200ms);
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TYPED_TEST(MainLoopTest, ABlockMayDropItsOwnTimer) {
    auto& loop = this->driver.loop;
    Timer timer;
    timer = loop.after(5ms, [&] {
        timer.reset();
        this->order.push_back(1);
    });
    this->driver.runFor(50ms);
    EXPECT_EQ(this->order, std::vector{1});
}

}  // namespace tavrelon::async
