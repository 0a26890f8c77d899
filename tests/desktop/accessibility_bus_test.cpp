#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <csignal>

#include "desktop/accessibility_session.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {
namespace {

using namespace std::chrono_literals;
using platform::AXError;

pid_t busDaemon() {
    const AccessibilityBus bus;
    const QDBusReply<uint> process = bus.connection().interface()->servicePid(QStringLiteral("org.freedesktop.DBus"));
    return static_cast<pid_t>(process.value());
}

TEST(AccessibilityBusLoss, ASilentBusIsBoundedAndAStopToo) {
    std::optional<AccessibilitySession> session(std::in_place);
    session->putInFront(1);
    ASSERT_TRUE(eventually([&] {
        nextTurn();
        return session->focused() == std::unexpected(AXError::NoValue);
    }));
    const auto daemon = busDaemon();
    ASSERT_GT(daemon, 1);
    ::kill(daemon, SIGSTOP);
    nextTurn();
    EXPECT_LT(timeOf([&] { EXPECT_EQ(session->focused(), std::unexpected(AXError::CannotComplete)); }), 400ms);
    nextTurn();
    EXPECT_LT(timeOf([&] { EXPECT_EQ(session->focused(), std::unexpected(AXError::CannotComplete)); }), 60ms);
    ::kill(daemon, SIGCONT);
    EXPECT_TRUE(eventually([&] {
        nextTurn();
        return session->focused() == std::unexpected(AXError::NoValue);
    }));
    ::kill(daemon, SIGSTOP);
    EXPECT_LT(timeOf([&] { session.reset(); }), 3000ms);
    ::kill(daemon, SIGCONT);
}

TEST(AccessibilityBusLoss, ABusThatHangsWhileItIsConnectedToHoldsNobodyUp) {
    const auto daemon = busDaemon();
    ASSERT_GT(daemon, 1);
    ::kill(daemon, SIGSTOP);
    AccessibilitySession session;
    session.putInFront(1);
    EXPECT_TRUE(eventually([&] {
        nextTurn();
        return session.focused() == std::unexpected(AXError::APIDisabled);
    }));
    const auto name = QStringLiteral("the rest of the program");
    EXPECT_LT(
        timeOf([&] { EXPECT_TRUE(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name).isConnected()); }),
        5000ms);
    QDBusConnection::disconnectFromBus(name);
    ::kill(daemon, SIGCONT);
    EXPECT_TRUE(eventually([&] {
        nextTurn();
        return session.focused() == std::unexpected(AXError::NoValue);
    })) << "it tries again by itself";
}

TEST(AccessibilityBusLoss, ABusThatEndedIsConnectedToAgain) {
    AccessibilitySession session;
    session.putInFront(1);
    const auto answers = [&](AXError error) {
        return eventually([&] {
            nextTurn();
            return session.focused() == std::unexpected(error);
        });
    };
    ASSERT_TRUE(answers(AXError::NoValue));
    ::kill(busDaemon(), SIGTERM);
    EXPECT_TRUE(answers(AXError::APIDisabled));
    EXPECT_TRUE(answers(AXError::NoValue));
}

}  // namespace
}  // namespace tavrelon::testing
