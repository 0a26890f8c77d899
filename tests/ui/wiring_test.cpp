#include <gtest/gtest.h>

#include "app/app_delegate.h"
#include "support/qt_gtest.h"
#include "support/test_desktop.h"

namespace tavrelon::app {

using namespace std::chrono_literals;
using tavrelon::testing::Taken;

class WiringTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desktop;
    AppDelegate delegate{desktop.platform, desktop.userInterface, generation::ServiceEndpoints::builtIn()};

    void launch() { delegate.applicationDidFinishLaunching(); }
    void press(const keys::HotkeyConfig& hotkey) {
        EXPECT_EQ(desktop.keyboard.press(hotkey.keyCode, hotkey.modifiers), Taken::ByUs);
        desktop.loop.runUntilIdle();
    }
    QStringList menuTitles() const {
        QStringList titles;
        for (const auto& item : desktop.statusItem.menu)
            titles << item.title;
        return titles;
    }
};

TEST_F(WiringTest, TheMasterSwitchShowsItsNewState) {
    launch();
    EXPECT_TRUE(desktop.panels.made.empty());
    press(keys::defaults::toggleAllHotkeysHotkey);
    ASSERT_EQ(desktop.panels.made.size(), 1U);
    EXPECT_TRUE(desktop.panels.made[0]->visible);
    EXPECT_EQ(desktop.panels.made[0]->kind, platform::PanelKind::StatusOverlay);
    EXPECT_FALSE(delegate.appState().storageManager().settings().hotkeysEnabled);
    desktop.loop.advance(2s);
    EXPECT_FALSE(desktop.panels.made[0]->visible);
}

TEST_F(WiringTest, BothPromptBoxKeysOpenTheBoxAndTheSecondPressOfItsHotkeyClosesIt) {
    launch();
    press(keys::defaults::quickAskHotkey);
    ASSERT_EQ(desktop.panels.made.size(), 1U);
    EXPECT_EQ(desktop.panels.made[0]->kind, platform::PanelKind::PromptBox);
    EXPECT_TRUE(desktop.panels.made[0]->visible);
    press(keys::defaults::floatingInputHotkey);
    EXPECT_FALSE(desktop.panels.made[0]->visible);
    EXPECT_EQ(desktop.workspace.activated().size(), 1U);
    desktop.application.onActiveChanged(true);
    EXPECT_FALSE(desktop.keyboard.hotkeys.wants(keys::defaults::quickAskHotkey)) << "our own windows type it";
    desktop.application.onActiveChanged(false);
    EXPECT_TRUE(desktop.keyboard.hotkeys.wants(keys::defaults::quickAskHotkey));
}

TEST_F(WiringTest, TheStatusItemFollowsTheStateAndHasItsMenu) {
    int opened = 0;
    delegate.showDashboard = [&] { ++opened; };
    launch();
    EXPECT_EQ(opened, 1) << "the dashboard opens at every launch";
    EXPECT_EQ(menuTitles(), (QStringList{QStringLiteral("Open Dashboard"), QString(), QStringLiteral("About Tavrelon"),
                                         QString(), QStringLiteral("Quit")}));
    EXPECT_EQ(desktop.statusItem.menu[0].keyEquivalent, QStringLiteral(","));
    EXPECT_EQ(desktop.statusItem.menu[4].keyEquivalent, QStringLiteral("q"));
    EXPECT_TRUE(desktop.statusItem.choose(QStringLiteral("Open Dashboard")));
    EXPECT_TRUE(desktop.statusItem.choose(QStringLiteral("About Tavrelon")));
    EXPECT_TRUE(desktop.statusItem.choose(QStringLiteral("Quit")));
    EXPECT_EQ(opened, 2);
    EXPECT_EQ(desktop.application.aboutShown, 1);
    EXPECT_TRUE(desktop.application.terminated);

    press(keys::defaults::toggleHotkey);
    EXPECT_EQ(desktop.statusItem.symbols, (QStringList{QStringLiteral("key.fill"), QStringLiteral("text.cursor")}));
    EXPECT_EQ(desktop.statusItem.description, QStringLiteral("Tavrelon"));
}

TEST_F(WiringTest, TheSpokenAndTheSeenInputsHaveTheirHotkeys) {
    desktop.screenCapture.permitted = true;
    launch();
    auto& machine = delegate.appState().inputStateMachine();
    const auto hold = [this](keys::Modifiers modifiers) {
        desktop.keyboard.chord(modifiers);
        desktop.loop.runUntilIdle();
    };
    const auto trigger = [&] { return machine.activeTrigger(); };
    hold(keys::defaults::voiceHotkey.modifiers);
    EXPECT_EQ(trigger(), input::InputTrigger::voice);
    EXPECT_TRUE(desktop.audioInput.running);
    press(keys::defaults::cancelHotkey);
    EXPECT_FALSE(desktop.audioInput.running);
    hold(keys::defaults::voiceDictationHotkey.modifiers);
    EXPECT_EQ(trigger(), input::InputTrigger::voiceDictation);
    press(keys::defaults::cancelHotkey);
    press(keys::defaults::videoHotkey);
    EXPECT_EQ(machine.currentState(), input::InputState::Case::recordingVideo);
    press(keys::defaults::cancelHotkey);
    desktop.httpSession.neverAnswer();
    press(keys::defaults::autoReplyHotkey);
    EXPECT_EQ(trigger(), input::InputTrigger::autoReply);
}

}  // namespace tavrelon::app
