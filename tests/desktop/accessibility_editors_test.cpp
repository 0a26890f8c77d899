#include <gtest/gtest.h>

#include <csignal>

#include "desktop/accessibility_session.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {
namespace {

using namespace std::chrono_literals;
using platform::AXAttribute;
using platform::AXElement;
using platform::AXError;
using platform::AXValue;

const auto mousepad = QStringLiteral("mousepad");
const auto featherpad = QStringLiteral("featherpad");
const auto standalone = QStringLiteral("--standalone");

class AccessibilityEditors : public ::testing::Test {
 public:
    QTemporaryDir folder;

    QString file(const QString& name, const QString& text) const { return writeFile(folder, name, text); }
};

TEST_F(AccessibilityEditors, TheFocusIsFollowedFromEditorToEditorToATerminalThatIsNotOnTheBus) {
    AccessibilitySession session;
    const RunningProgram gtk(mousepad, {file(QStringLiteral("a.txt"), QStringLiteral("from GTK"))});
    const auto inGtk = session.waitForFocusIn(gtk.process());
    ASSERT_TRUE(inGtk);
    EXPECT_EQ(session.read(*inGtk, AXAttribute::Value), AXValue(QStringLiteral("from GTK")));

    const RunningProgram qt(featherpad, {standalone, file(QStringLiteral("b.txt"), QStringLiteral("from Qt"))});
    const auto inQt = session.waitForFocusIn(qt.process());
    ASSERT_TRUE(inQt);
    EXPECT_EQ(session.read(*inQt, AXAttribute::Value), AXValue(QStringLiteral("from Qt")));

    const RunningProgram terminal(QStringLiteral("xterm"), {});
    ASSERT_TRUE(eventually([&] {
        const auto front = session.workspace.frontmostApplication();
        return front && front->processIdentifier == terminal.process();
    }));
    nextTurn();
    EXPECT_EQ(session.focused(), std::unexpected(AXError::NoValue));
}

}  // namespace
}  // namespace tavrelon::testing
