#include <gtest/gtest.h>

#include "support/input_desk.h"
#include "support/qt_gtest.h"
#include "ui/floating/floating_input_window_controller.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;
using Case = input::InputState::Case;

class FloatingInputTest : public ::testing::Test {
 public:
    tavrelon::testing::InputDesk desk;
    platform::RunningApplication editor = *desk.workspace.frontmostApplication();
    std::optional<QRectF> caret = QRectF(300, 400, 2, 18);
    bool isEnglish = true;
    std::unique_ptr<FloatingInputWindowController> box = std::make_unique<FloatingInputWindowController>(
        FloatingInputWindowController::Desktop{desk.loop, desk.workspace, desk.userInterface, [this] { return caret; }},
        desk.machine, [this] { return isEnglish; });

    FloatingInputTest() { desk.generator.delay = 5s; }
    tavrelon::testing::FakePanel& panel() { return *desk.panels.made.at(0); }
    void send(const QString& text) {
        box->show();
        box->model().setText(text);
        box->model().submit();
    }
};

TEST_F(FloatingInputTest, ASlowDesktopIsWaitedForAndADeadOneOnlySoLong) {
    desk.workspace.setKeyboardFollows(false);
    send(QStringLiteral("first"));
    desk.loop.advance(500ms);
    EXPECT_TRUE(desk.state() == Case::idle) << "keys still go elsewhere";
    desk.workspace.setKeyboardFollows(true);
    desk.loop.advance(10ms);
    EXPECT_TRUE(desk.state() == Case::processing);
    desk.loop.runToEnd();

    desk.workspace.setKeyboardFollows(false);
    send(QStringLiteral("second"));
    desk.loop.advance(2500ms);
    EXPECT_FALSE(desk.state() == Case::idle) << "the prompt is not lost";
}

TEST_F(FloatingInputTest, ABlankPromptAndEscapeOnlyGiveTheFocusBack) {
    send(QStringLiteral(" \n "));
    EXPECT_FALSE(panel().visible);
    EXPECT_EQ(desk.workspace.frontmostApplication(), editor);
    box->show();
    box->model().setText(QStringLiteral("half a thought"));
    box->model().cancel();
    EXPECT_EQ(desk.workspace.frontmostApplication(), editor);
    desk.loop.runToEnd();
    EXPECT_TRUE(desk.generator.requests.empty());
    box->show();
    EXPECT_EQ(box->model().text(), QString());
    EXPECT_EQ(desk.panels.made.size(), 1U);
}

TEST_F(FloatingInputTest, ABusyMachineKeepsTheBoxShutAndAFinishedOneDoesNot) {
    desk.toggle();
    box->show();
    EXPECT_TRUE(desk.panels.made.empty());
    EXPECT_EQ(desk.workspace.frontmostApplication(), editor);
    desk.machine->failInput(QStringLiteral("No"));
    desk.loop.runUntilIdle();
    box->show();
    EXPECT_TRUE(box->isVisible());
}

TEST_F(FloatingInputTest, AnApplicationThatEndedMeanwhileIsLeftInPeace) {
    box->show();
    desk.workspace.terminate(editor);
    box->model().setText(QStringLiteral("hello"));
    box->model().submit();
    EXPECT_TRUE(desk.workspace.activated().empty());
    desk.loop.advance(100ms);
    EXPECT_FALSE(desk.state() == Case::idle);
}

TEST_F(FloatingInputTest, ItStandsAboveTheCaretWithinTheVisibleFrame) {
    box->show();
    EXPECT_EQ(panel().origin, QPointF(300, 800 - 418 + 18 + 12));
    const auto placedFor = [&](QRectF rectangle) {
        caret = rectangle;
        box->show();
        return panel().origin;
    };
    EXPECT_EQ(placedFor({1279, 400, 1, 18}), QPointF(1280 - 420, 412));
    EXPECT_EQ(placedFor({300, 5, 1, 18}), QPointF(300, 800 - 74)) << "below the upper edge";
    EXPECT_EQ(placedFor({-40, 795, 1, 18}), QPointF(0, 30)) << "above the task bar";
    caret.reset();
    box->show();
    EXPECT_EQ(panel().origin, QPointF(430, 363));
}

TEST_F(FloatingInputTest, ItStaysOnTheScreenOfTheCaretAndTakesItsScaleIntoAccount) {
    desk.panels.scale = 2;
    desk.screens.connected.push_back({.frame = {1280, 0, 1600, 800}, .visibleFrame = {1280, 0, 1600, 800}});
    caret = QRectF(2800, 400, 1, 18);
    box->show();
    EXPECT_EQ(panel().origin, QPointF(2880 - 840, 412));
    desk.screens.connected.clear();
    box->show();
    EXPECT_EQ(panel().origin, QPointF(2040, 412)) << "left where it was";
}

TEST_F(FloatingInputTest, ADestroyedControllerSendsNothing) {
    send(QStringLiteral("hello"));
    box.reset();
    desk.loop.advance(1s);
    EXPECT_TRUE(desk.state() == Case::idle);
}

}  // namespace tavrelon::ui
