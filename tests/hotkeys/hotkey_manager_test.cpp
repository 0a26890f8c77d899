#include "hotkeys/hotkey_manager.h"

#include <gmock/gmock.h>

#include "support/input_desk.h"
#include "support/qt_gtest.h"

namespace tavrelon::hotkeys {

using namespace std::chrono_literals;
using tavrelon::testing::InputDesk;
using tavrelon::testing::Taken;
using ::testing::ElementsAre;
using Case = input::InputState::Case;
using Fires = platform::WantedHotkey::Fires;

namespace {

/// Idle, listening, listening to a voice, recording, processing, completed, error.
constexpr std::array states{Case::idle,       Case::listening, Case::listeningVoice, Case::recordingVideo,
                            Case::processing, Case::completed, Case::error};

/// For each state: p where a press counts, r and d where modifiers alone count released or down, - where nothing does.
std::string row(const keys::HotkeySet& settings, HotkeyAction action, FrontWindow front) {
    std::string cells;
    for (const auto state : states) {
        const auto wanted = wantedHotkeys(settings, state, front);
        const auto found = std::ranges::find(wanted, action, &DeclaredHotkey::action);
        const auto letter = [&] {
            switch (found->hotkey.fires) {
                case Fires::OnPress:
                    return 'p';
                case Fires::OnModifiersDown:
                    return 'd';
                case Fires::OnModifiersReleased:
                    return 'r';
            }
            return '?';
        };
        cells += found == wanted.end() ? '-' : letter();
    }
    return cells;
}

}  // namespace

TEST(HotkeyTable, EveryCell) {
    const struct {
        HotkeyAction action;
        const char* cells;
        const char* inOurWindow;
        const char* masterOff;
    } rows[] = {
        {HotkeyAction::toggleAllHotkeys, "ppppppp", "ppppppp", "ppppppp"},
        {HotkeyAction::video, "p--p-pp", "p--p-pp", "-------"},
        {HotkeyAction::toggle, "ppppppp", "ppppppp", "-------"},
        {HotkeyAction::floatingInput, "p----pp", "p----pp", "-------"},
        {HotkeyAction::quickAsk, "ppppppp", "-------", "-------"},
        {HotkeyAction::cancel, "-pppp--", "-pppp--", "-------"},
        {HotkeyAction::autoReply, "p----pp", "p----pp", "-------"},
        {HotkeyAction::voice, "r-d--rr", "r-d--rr", "-------"},
        {HotkeyAction::voiceDictation, "r-d--rr", "r-d--rr", "-------"},
    };
    const keys::HotkeySet on;
    keys::HotkeySet off;
    off.hotkeysEnabled = false;
    for (const auto& each : rows) {
        SCOPED_TRACE(static_cast<int>(each.action));
        EXPECT_EQ(row(on, each.action, FrontWindow::OfAnotherApplication), each.cells);
        EXPECT_EQ(row(on, each.action, FrontWindow::OurOwn), each.inOurWindow);
        EXPECT_EQ(row(off, each.action, FrontWindow::OfAnotherApplication), each.masterOff);
    }
    keys::HotkeySet spoken;
    spoken.voiceHotkey = {9, keys::controlFlag};
    spoken.voiceDictationHotkey = {};
    EXPECT_EQ(row(spoken, HotkeyAction::voice, FrontWindow::OfAnotherApplication), "ppppppp") << "a key as any other";
    EXPECT_EQ(row(spoken, HotkeyAction::voiceDictation, FrontWindow::OfAnotherApplication), "-------")
        << "no key and no modifiers never fire";
}

TEST(HotkeyTable, AQuestionCanBeAnsweredWhateverIsSwitchedOff) {
    keys::HotkeySet off;
    off.hotkeysEnabled = off.toggleHotkeyEnabled = off.cancelHotkeyEnabled = false;
    const auto wanted = [&](Question question) {
        std::vector<HotkeyAction> actions;
        for (const auto& each : wantedHotkeys(off, Case::processing, FrontWindow::OfAnotherApplication, question))
            actions.push_back(each.action);
        return actions;
    };
    EXPECT_THAT(wanted(Question::None), ElementsAre(HotkeyAction::toggleAllHotkeys));
    EXPECT_THAT(wanted(Question::OnShow),
                ElementsAre(HotkeyAction::toggleAllHotkeys, HotkeyAction::toggle, HotkeyAction::cancel));
}

TEST(HotkeyTable, TheFirstInTheOrderHasTheKeysAndForeignBitsDoNotMatter) {
    keys::HotkeySet set;
    set.videoHotkey = {set.toggleHotkey.keyCode, set.toggleHotkey.modifiers | keys::Modifiers{0x10000}};
    set.autoReplyHotkey = set.toggleHotkey;
    EXPECT_EQ(row(set, HotkeyAction::video, FrontWindow::OfAnotherApplication), "p--p-pp");
    EXPECT_EQ(row(set, HotkeyAction::toggle, FrontWindow::OfAnotherApplication), "-pp-p--") << "where video is not";
    EXPECT_EQ(row(set, HotkeyAction::autoReply, FrontWindow::OfAnotherApplication), "-------");
    set.videoHotkeyEnabled = false;
    EXPECT_EQ(row(set, HotkeyAction::toggle, FrontWindow::OfAnotherApplication), "ppppppp");
}

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
    Taken press(keys::VirtualKey key, keys::Modifiers flags = {}) { return desk.keyboard.press(key, flags); }
};

constexpr auto all = keys::defaults::shiftOptionCommand;

TEST_F(HotkeyManagerTest, EachPressDoesWhatItIsFor) {
    EXPECT_EQ(press(keys::keyA, all), Taken::ByUs) << "code 0 is the key A";
    EXPECT_EQ(press(40, all), Taken::ByUs);
    EXPECT_EQ(press(5, all), Taken::ByUs);
    EXPECT_EQ(press(35, all), Taken::ByUs);
    EXPECT_EQ(press(keys::keyGrave), Taken::ByUs);
    EXPECT_EQ(desk.keyboard.chord(keys::controlFlag | keys::optionFlag), Taken::ByUs);
    EXPECT_EQ(desk.keyboard.chord(keys::controlFlag | keys::shiftFlag), Taken::ByUs);
    EXPECT_EQ(called, (QStringList{QStringLiteral("autoReply"), QStringLiteral("toggleAll"), QStringLiteral("video"),
                                   QStringLiteral("floating"), QStringLiteral("floating"), QStringLiteral("voice"),
                                   QStringLiteral("dictation")}));
}

TEST_F(HotkeyManagerTest, AChangeOfTheStateDeclaresInTheSameTurn) {
    auto& keyboard = desk.keyboard.hotkeys;
    EXPECT_FALSE(keyboard.wants(keys::defaults::cancelHotkey));
    desk.press(desk.hotkeys.toggleHotkey);
    std::optional<bool> wanted;
    const auto observer = desk.machine->bindableCurrentState().addNotifier(
        [&] { desk.loop.post([&] { wanted = keyboard.wants(keys::defaults::cancelHotkey); }); });
    desk.loop.runUntilIdle();
    EXPECT_EQ(wanted, true);
    desk.press(desk.hotkeys.cancelHotkey);
    EXPECT_EQ(keyboard.fire({keys::defaults::cancelHotkey, Fires::OnPress}), Taken::ByUs) << "still its turn";
    desk.loop.runUntilIdle();
    EXPECT_FALSE(keyboard.wants(keys::defaults::cancelHotkey));
    EXPECT_EQ(desk.state(), Case::idle);
}

TEST_F(HotkeyManagerTest, TheMasterSwitchLeavesAnOpenInputCollecting) {
    desk.toggle();
    desk.hotkeys.hotkeysEnabled = false;
    desk.hotkeys.refresh();
    EXPECT_EQ(press(37, all), Taken::ByApplication);
    desk.type(QStringLiteral("ab"));
    EXPECT_EQ(desk.machine->typedInputBuffer(), QStringLiteral("ab"));
    EXPECT_EQ(press(40, all), Taken::ByUs);
    EXPECT_EQ(called, QStringList{QStringLiteral("toggleAll")});
}

TEST_F(HotkeyManagerTest, ThePromptBoxStaysShutRightAfterTheToggleHotkey) {
    desk.toggle();
    desk.press(desk.hotkeys.cancelHotkey);
    desk.loop.advance(100ms);
    EXPECT_EQ(press(35, all), Taken::ByUs);
    EXPECT_EQ(press(keys::keyGrave), Taken::ByUs);
    EXPECT_TRUE(called.isEmpty());
    desk.loop.advance(200ms);
    EXPECT_EQ(press(35, all), Taken::ByUs);
    EXPECT_EQ(called, QStringList{QStringLiteral("floating")});
}

TEST_F(HotkeyManagerTest, RecordingSwitchesHotkeysOffOnlyInOurOwnWindow) {
    desk.hotkeys.setRecordingKeys(true);
    EXPECT_FALSE(desk.keyboard.hotkeys.wanted().empty()) << "a key cap was left recording";
    desk.hotkeys.setOwnWindowActive(true);
    EXPECT_TRUE(desk.keyboard.hotkeys.wanted().empty());
    desk.hotkeys.setOwnWindowActive(false);
    EXPECT_FALSE(desk.keyboard.hotkeys.wanted().empty());
}

TEST_F(HotkeyManagerTest, AKeyboardThatCannotBeHadIsAnError) {
    desk.hotkeys.stopListening();
    EXPECT_FALSE(desk.keyboard.hotkeys.isRunning());
    desk.keyboard.hotkeys.failToStart(QStringLiteral("no XInput"));
    EXPECT_THROW(desk.hotkeys.startListening(), TavrelonError);
    desk.accessibility.trusted = false;
    EXPECT_THROW(desk.hotkeys.startListening(), TavrelonError);
}

}  // namespace tavrelon::hotkeys
