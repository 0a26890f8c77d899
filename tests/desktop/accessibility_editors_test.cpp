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

TEST_F(AccessibilityEditors, AStoppedEditorCostsOneBoundedWaitAndOthersNothing) {
    AccessibilitySession session;
    const RunningProgram other(featherpad, {standalone, file(QStringLiteral("b.txt"), QStringLiteral("awake"))});
    const auto awake = session.waitForFocusIn(other.process());
    ASSERT_TRUE(awake);
    const RunningProgram editor(mousepad, {file(QStringLiteral("a.txt"), QStringLiteral("asleep"))});
    const auto field = session.waitForFocusIn(editor.process());
    ASSERT_TRUE(field);

    editor.signal(SIGSTOP);
    const auto snapshot = [&] {
        EXPECT_EQ(session.focused(), std::unexpected(AXError::CannotComplete));
        EXPECT_EQ(session.accessibility.copyAttribute(*field, AXAttribute::SelectedTextRange),
                  std::unexpected(AXError::CannotComplete));
        EXPECT_EQ(session.accessibility.copyAttribute(*field, AXAttribute::Value),
                  std::unexpected(AXError::CannotComplete));
    };
    nextTurn();
    EXPECT_LT(timeOf(snapshot), 400ms);
    for (int i = 0; i < 5; ++i) {
        nextTurn();
        EXPECT_LT(timeOf(snapshot), 60ms);
    }
    EXPECT_EQ(session.read(*awake, AXAttribute::Value), AXValue(QStringLiteral("awake")));
    EXPECT_EQ(session.accessibility.setAttribute(*field, AXAttribute::SelectedText, QStringLiteral("x")),
              AXError::CannotComplete);

    editor.signal(SIGCONT);
    EXPECT_TRUE(eventually([&] {
        nextTurn();
        return session.focused() == AXValue(*field);
    }));
    EXPECT_EQ(session.read(*field, AXAttribute::Value), AXValue(QStringLiteral("asleep")));
}

}  // namespace
}  // namespace tavrelon::testing
