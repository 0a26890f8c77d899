#include <gtest/gtest.h>

#include "support/qt_gtest.h"
#include "support/test_desktop.h"
#include "ui/hud/hotkey_status_hud_window_controller.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;

class HotkeyStatusHUDTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desktop;
    HotkeyStatusHUDWindowController controller{desktop.loop, desktop.userInterface};

    void show(bool enabled) {
        controller.show(enabled);
        desktop.loop.runUntilIdle();
    }
    tavrelon::testing::FakePanel& panel() { return *desktop.panels.made.at(0); }
};

TEST_F(HotkeyStatusHUDTest, ItFadesInStaysAndFadesOut) {
    show(false);
    EXPECT_EQ(panel().kind, platform::PanelKind::StatusOverlay);
    EXPECT_EQ(panel().contentSize, QSizeF(260, 80));
    EXPECT_EQ(panel().origin, QPointF(640 - 130, 800 - 80 - 80));
    EXPECT_TRUE(panel().visible);
    EXPECT_EQ(panel().alpha, 1);
    EXPECT_EQ(panel().fade, 120ms);
    desktop.loop.advance(1399ms);
    EXPECT_EQ(panel().alpha, 1);
    desktop.loop.advance(1ms);
    EXPECT_EQ(panel().alpha, 0);
    EXPECT_EQ(panel().fade, 180ms);
    EXPECT_TRUE(panel().visible);
    desktop.loop.advance(180ms);
    EXPECT_FALSE(panel().visible);
}

TEST_F(HotkeyStatusHUDTest, ASecondShowingRestartsTheWaitWithTheSamePanel) {
    show(false);
    desktop.loop.advance(1s);
    show(true);
    desktop.loop.advance(1399ms);
    EXPECT_EQ(panel().alpha, 1);
    desktop.loop.advance(200ms);
    EXPECT_FALSE(panel().visible);
    EXPECT_EQ(desktop.panels.made.size(), 1U);
}

TEST_F(HotkeyStatusHUDTest, AShowingDuringTheFadeOutIsCutShortByIt) {
    show(false);
    desktop.loop.advance(1500ms);
    show(true);
    EXPECT_TRUE(panel().visible);
    EXPECT_EQ(panel().alpha, 1);
    desktop.loop.advance(80ms);
    EXPECT_FALSE(panel().visible);
}

TEST_F(HotkeyStatusHUDTest, ItStandsOnTheScreenWithTheMouse) {
    desktop.screens.connected.push_back({.frame = {1280, -280, 1920, 1080}, .visibleFrame = {1280, -280, 1920, 1060}});
    desktop.screens.mouse = {2000, 100};
    show(true);
    EXPECT_EQ(panel().origin, QPointF(2240 - 130, 780 - 80 - 80));
    desktop.screens.mouse = {-50, 5000};
    show(true);
    EXPECT_EQ(panel().origin, QPointF(510, 640)) << "the main screen where the mouse is on none";
    desktop.screens.connected.clear();
    show(true);
    EXPECT_EQ(panel().origin, QPointF(-130, -160));
}

}  // namespace tavrelon::ui
