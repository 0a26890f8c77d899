#include "hotkeys/hotkey_manager.h"

#include <gtest/gtest.h>

#include "support/input_desk.h"
#include "support/qt_gtest.h"

namespace tavrelon::hotkeys {

using namespace std::chrono_literals;
using platform::TapVerdict;
using tavrelon::testing::InputDesk;
using Case = input::InputState::Case;

class HotkeyManagerTest : public ::testing::Test {
 public:
    InputDesk desk;
    QStringList called;

    HotkeyManagerTest() {
        const auto note = [this](const char* name) { return [this, name] { called << QString::fromLatin1(name); }; };
        desk.hotkeys.onVoiceHotkeyPressed = note("voice");
        desk.hotkeys.onVoiceDictationHotkeyPressed = note("dictation");
        desk.hotkeys.onAutoReplyHotkeyPressed = note("autoReply");
        desk.hotkeys.onToggleAllHotkeysPressed = note("toggleAll");
        desk.hotkeys.onVideoHotkeyPressed = note("video");
        desk.hotkeys.onFloatingInputHotkeyPressed = note("floating");
    }
    TapVerdict press(keys::VirtualKey key, keys::Modifiers flags = {}) { return desk.eventTap.press(key, flags); }
};

constexpr auto all = keys::defaults::shiftOptionCommand;

TEST_F(HotkeyManagerTest, TheMasterSwitchLeavesOnlyItself) {
    desk.toggle();
    desk.hotkeys.hotkeysEnabled = false;
    desk.hotkeys.refreshTap();
    EXPECT_EQ(desk.eventTap.hotkeys(), std::vector{keys::defaults::toggleAllHotkeysHotkey});
    EXPECT_EQ(press(40, all), TapVerdict::Drop);
    EXPECT_EQ(press(37, all), TapVerdict::Pass);
    EXPECT_EQ(press(keys::keyEscape), TapVerdict::Pass);
    desk.type(QStringLiteral("ab"));
    EXPECT_EQ(desk.machine->typedInputBuffer(), QStringLiteral("ab")) << "an open input goes on collecting";
    EXPECT_EQ(called, QStringList{QStringLiteral("toggleAll")});
}

TEST_F(HotkeyManagerTest, TheGraveAccentOpensThePromptBoxFromOtherApplicationsOnly) {
    EXPECT_EQ(press(keys::keyGrave), TapVerdict::Drop);
    EXPECT_EQ(called, QStringList{QStringLiteral("floating")});
    EXPECT_EQ(press(keys::keyGrave, keys::shiftFlag), TapVerdict::Pass);
    desk.workspace.focusOwnWindow();
    EXPECT_EQ(press(keys::keyGrave), TapVerdict::Pass);
    EXPECT_EQ(called.size(), 1);
}

TEST_F(HotkeyManagerTest, ThePromptBoxStaysShutRightAfterTheToggleHotkey) {
    desk.toggle();
    desk.press(desk.hotkeys.cancelHotkey);
    desk.loop.advance(100ms);
    EXPECT_EQ(press(35, all), TapVerdict::Drop);
    EXPECT_EQ(press(keys::keyGrave), TapVerdict::Drop);
    EXPECT_TRUE(called.isEmpty());
    desk.loop.advance(200ms);
    EXPECT_EQ(press(35, all), TapVerdict::Drop);
    EXPECT_EQ(called, QStringList{QStringLiteral("floating")});
}

TEST_F(HotkeyManagerTest, ModifiersAloneCallOncePerPress) {
    const auto controlOption = keys::controlFlag | keys::optionFlag;
    const auto change = [this](keys::Modifiers flags) { return desk.eventTap.flagsChanged(flags); };
    EXPECT_EQ(change(keys::controlFlag), TapVerdict::Pass);
    EXPECT_EQ(change(controlOption), TapVerdict::Drop);
    EXPECT_EQ(change(controlOption | keys::commandFlag), TapVerdict::Pass);
    EXPECT_EQ(change(keys::controlFlag), TapVerdict::Drop) << "the release that clears the latch";
    EXPECT_EQ(change({}), TapVerdict::Pass);
    EXPECT_EQ(called, QStringList{QStringLiteral("voice")});
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[Hotkey] Voice hotkey pressed (Control+Option)")));
    change(keys::controlFlag | keys::shiftFlag);
    EXPECT_EQ(called.back(), QStringLiteral("dictation"));
    desk.hotkeys.voiceHotkey.modifiers = {};
    change({});
    change(controlOption);
    EXPECT_EQ(called.size(), 2) << "no key and no modifiers never fire";
}

TEST_F(HotkeyManagerTest, KeyCodeZeroMeansTheKeyAOnlyOutsideTheVoiceHotkeys) {
    EXPECT_EQ(press(keys::keyA, all), TapVerdict::Drop);
    EXPECT_EQ(called, QStringList{QStringLiteral("autoReply")});
    EXPECT_EQ(press(keys::keyA, keys::controlFlag | keys::optionFlag), TapVerdict::Pass);
    desk.hotkeys.voiceHotkey = {9, keys::controlFlag | keys::optionFlag};
    desk.hotkeys.refreshTap();
    EXPECT_EQ(press(9, keys::controlFlag | keys::optionFlag), TapVerdict::Drop);
    EXPECT_EQ(called.back(), QStringLiteral("voice"));
    desk.eventTap.flagsChanged(keys::controlFlag | keys::optionFlag);
    EXPECT_EQ(called.size(), 2);
}

TEST_F(HotkeyManagerTest, TheFirstInTheOrderWinsAndForeignBitsDoNotMatter) {
    desk.hotkeys.autoReplyHotkey = desk.hotkeys.toggleHotkey;
    desk.hotkeys.videoHotkey = desk.hotkeys.toggleHotkey;
    press(37, all | keys::Modifiers{0x10000});
    EXPECT_EQ(called, QStringList{QStringLiteral("video")});
    desk.hotkeys.videoHotkeyEnabled = false;
    press(37, all);
    desk.loop.runUntilIdle();
    EXPECT_EQ(desk.state(), Case::listening);
    EXPECT_EQ(called.size(), 1);
}

TEST_F(HotkeyManagerTest, AHeldToggleHotkeyStartsAndThenCommits) {
    desk.editor.open(QStringLiteral("word"));
    desk.editor.select(0, 4);
    press(37, all);
    desk.loop.runUntilIdle();
    desk.eventTap.repeat(37, all);
    desk.loop.runUntilIdle();
    EXPECT_EQ(desk.state(), Case::processing);
}

TEST_F(HotkeyManagerTest, AKeyboardThatCannotBeWatchedIsAnError) {
    desk.hotkeys.stopListening();
    EXPECT_FALSE(desk.eventTap.isRunning());
    desk.eventTap.failToStart(QStringLiteral("no XInput"));
    EXPECT_THROW(desk.hotkeys.startListening(), TavrelonError);
    desk.accessibility.trusted = false;
    EXPECT_THROW(desk.hotkeys.startListening(), TavrelonError);
}

}  // namespace tavrelon::hotkeys
