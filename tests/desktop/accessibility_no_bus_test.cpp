#include <gtest/gtest.h>

#include "desktop/accessibility_session.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {
namespace {

using platform::AXAttribute;
using platform::AXElement;
using platform::AXError;
using platform::AXValue;

// A program of its own, since the address of the session's bus is looked up once in a program's life.
TEST(AccessibilityWithoutABus, ReadsSaySoUntilThereIsOneAndTheWindowManagersAnswersRemain) {
    const QTemporaryDir folder;
    const auto address = QStringLiteral("unix:path=") + folder.filePath(QStringLiteral("bus"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
    AccessibilitySession session;
    session.workspace.pretend = 1;
    EXPECT_EQ(session.focused(), std::unexpected(AXError::APIDisabled));
    const AXElement field{AXElement::Kind::Object, 0, QStringLiteral(":1.1"), QStringLiteral("/field")};
    EXPECT_EQ(session.read(field, AXAttribute::Value), std::unexpected(AXError::APIDisabled));
    EXPECT_EQ(session.accessibility.setAttribute(field, AXAttribute::SelectedText, QStringLiteral("x")),
              AXError::APIDisabled);
    EXPECT_TRUE(session.accessibility.isProcessTrusted());
    const auto application = platform::axApplicationElement(1);
    EXPECT_EQ(session.read(platform::axSystemWideElement(), AXAttribute::FocusedApplication), AXValue(application));
    EXPECT_EQ(session.read(application, AXAttribute::FocusedWindow),
              AXValue(AXElement{AXElement::Kind::Window, 1, {}, {}}));

    const RunningProgram daemon(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                                QStringLiteral("--address=") + address});
    EXPECT_TRUE(eventually([&] {
        nextTurn();
        return session.focused() == std::unexpected(AXError::NoValue);
    })) << "it tries again by itself";
    EXPECT_EQ(session.log.lines().size(), 1) << session.log.lines().join(QLatin1Char('|')).toStdString();
}

}  // namespace
}  // namespace tavrelon::testing
