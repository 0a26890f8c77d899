// The effect of each event in each state, cell by cell, through the listener and on virtual time.
#include <gtest/gtest.h>

#include "support/input_desk.h"
#include "support/qt_gtest.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using platform::TapVerdict;
using tavrelon::testing::FakeGenerator;
using tavrelon::testing::InputDesk;
using Case = InputState::Case;

/// What the application root wires on top of the listener.
struct Table : InputDesk {
    Table() {
        generator.delay = 10s;
        hotkeys.voiceHotkey = {96, keys::noModifiers};  // real keys, so that one press is one event
        hotkeys.voiceDictationHotkey = {97, keys::noModifiers};
        hotkeys.refreshTap();
        hotkeys.onVoiceHotkeyPressed = [this] { machine->handleVoiceHotkey(); };
        hotkeys.onVoiceDictationHotkeyPressed = [this] { machine->handleVoiceDictationHotkey(); };
        hotkeys.onAutoReplyHotkeyPressed = [this] { machine->startAutoReply(); };
        hotkeys.onVideoHotkeyPressed = [this] {
            machine->currentState() == Case::recordingVideo ? machine->stopVideoInput() : machine->startVideoInput();
        };
    }

    void pass() { loop.runUntilIdle(); }

    void bringTo(Case wanted, InputTrigger voiceTrigger = InputTrigger::voice) {
        switch (wanted) {
            case Case::idle:
                break;
            case Case::listening:
                toggle();
                type(QStringLiteral("question"));
                break;
            case Case::listeningVoice:
                press(voiceTrigger == InputTrigger::voice ? hotkeys.voiceHotkey : hotkeys.voiceDictationHotkey);
                break;
            case Case::recordingVideo:
                press(hotkeys.videoHotkey);
                break;
            case Case::processing:
                request(QStringLiteral("question"));
                break;
            case Case::completed:
                generator.delay = 0s;
                request(QStringLiteral("question"));
                loop.advance(1s);
                generator.delay = 10s;
                break;
            case Case::error:
                generator.delay = 0s;
                generator.script.assign(3, FakeGenerator::Failure{QStringLiteral("no")});
                request(QStringLiteral("question"));
                loop.advance(5s);
                generator.delay = 10s;
                break;
        }
        pass();
        ASSERT_EQ(state(), wanted);
        loop.advance(300ms);  // out of the prompt box's suppression
        log.clear();
    }
};

struct Cell {
    Case before;
    Case after;
    TapVerdict verdict;
    const char* logged = nullptr;
};

struct Row {
    const char* name;
    keys::HotkeyConfig hotkey;
    std::vector<Cell> cells;
    std::optional<InputTrigger> trigger;  ///< set where a new input begins
};

class StateTable : public ::testing::TestWithParam<Row> {};

TEST_P(StateTable, EveryCell) {
    for (const auto& cell : GetParam().cells) {
        Table table;
        table.bringTo(cell.before);
        EXPECT_EQ(table.press(GetParam().hotkey), cell.verdict) << static_cast<int>(cell.before);
        table.pass();
        EXPECT_EQ(table.state(), cell.after) << "from " << static_cast<int>(cell.before);
        if (cell.logged) {
            EXPECT_TRUE(table.log.contains(QString::fromLatin1(cell.logged))) << cell.logged;
        }
        const bool beginsInput = cell.before != cell.after && InputState(cell.before).acceptsNewInput();
        if (beginsInput && GetParam().trigger) {
            EXPECT_EQ(table.machine->activeTrigger(), GetParam().trigger);
        }
    }
}

constexpr auto pass = TapVerdict::Pass;
constexpr auto drop = TapVerdict::Drop;

INSTANTIATE_TEST_SUITE_P(
    Hotkeys, StateTable,
    ::testing::Values(Row{"toggle",
                          keys::defaults::toggleHotkey,
                          {{Case::idle, Case::listening, drop, "[Hotkey] Starting text listening"},
                           {Case::listening, Case::processing, drop, "[Hotkey] Committing text input"},
                           {Case::listeningVoice, Case::listeningVoice, drop, "[Hotkey] Ignored - voice mode active"},
                           {Case::recordingVideo, Case::recordingVideo, drop, "[Hotkey] Ignored - video mode active"},
                           {Case::processing, Case::processing, drop, "[Hotkey] Ignored while processing"},
                           {Case::completed, Case::listening, drop},
                           {Case::error, Case::listening, drop}},
                          InputTrigger::text},
                      Row{"voice",
                          {96, keys::noModifiers},
                          {{Case::idle, Case::listeningVoice, drop},
                           {Case::listening, Case::listening, drop},
                           {Case::listeningVoice, Case::processing, drop},
                           {Case::recordingVideo, Case::recordingVideo, drop},
                           {Case::processing, Case::processing, drop},
                           {Case::completed, Case::listeningVoice, drop},
                           {Case::error, Case::listeningVoice, drop}},
                          InputTrigger::voice},
                      Row{"dictation",
                          {97, keys::noModifiers},
                          {{Case::idle, Case::listeningVoice, drop},
                           {Case::listening, Case::listening, drop},
                           {Case::listeningVoice, Case::listeningVoice, drop},  // recording for voice input
                           {Case::recordingVideo, Case::recordingVideo, drop},
                           {Case::processing, Case::processing, drop},
                           {Case::completed, Case::listeningVoice, drop},
                           {Case::error, Case::listeningVoice, drop}},
                          InputTrigger::voiceDictation},
                      Row{"video",
                          keys::defaults::videoHotkey,
                          {{Case::idle, Case::recordingVideo, drop},
                           {Case::listening, Case::listening, pass},
                           {Case::listeningVoice, Case::listeningVoice, pass},
                           {Case::recordingVideo, Case::processing, drop},
                           {Case::processing, Case::processing, pass},
                           {Case::completed, Case::recordingVideo, drop},
                           {Case::error, Case::recordingVideo, drop}},
                          InputTrigger::video},
                      Row{"autoReply",
                          keys::defaults::autoReplyHotkey,
                          {{Case::idle, Case::processing, drop},
                           {Case::listening, Case::listening, pass},
                           {Case::listeningVoice, Case::listeningVoice, pass},
                           {Case::recordingVideo, Case::recordingVideo, pass},
                           {Case::processing, Case::processing, pass},
                           {Case::completed, Case::processing, drop},
                           {Case::error, Case::processing, drop}},
                          InputTrigger::autoReply},
                      Row{"cancel",
                          keys::defaults::cancelHotkey,
                          {{Case::idle, Case::idle, pass},
                           {Case::listening, Case::idle, drop},
                           {Case::listeningVoice, Case::idle, drop},
                           {Case::recordingVideo, Case::idle, drop},
                           {Case::processing, Case::idle, drop},
                           {Case::completed, Case::completed, pass},
                           {Case::error, Case::error, pass}},
                          std::nullopt}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(StateTableOther, FloatingTextAndResetInEachState) {
    for (const auto before : {Case::idle, Case::listening, Case::listeningVoice, Case::recordingVideo, Case::processing,
                              Case::completed, Case::error}) {
        Table table;
        table.bringTo(before);
        table.machine->submitFloatingInput(QStringLiteral("hello"));
        table.pass();
        const bool taken = InputState(before).acceptsNewInput();
        EXPECT_EQ(table.state(), taken ? Case::processing : before);
        if (taken) {
            EXPECT_EQ(table.machine->activeTrigger(), InputTrigger::floatingInput);
        }
    }
    for (const auto before : {Case::completed, Case::error}) {
        Table table;
        table.bringTo(before);
        table.machine->resetToIdle();
        table.pass();
        EXPECT_EQ(table.state(), Case::idle);
        EXPECT_EQ(table.machine->activeTrigger(), std::nullopt);
    }
}

TEST(StateTableOther, DictationEndsByItsOwnHotkeyAndCancelDropsRecordings) {
    Table dictating;
    dictating.bringTo(Case::listeningVoice, InputTrigger::voiceDictation);
    dictating.press(dictating.hotkeys.voiceHotkey);
    dictating.pass();
    EXPECT_EQ(dictating.state(), Case::listeningVoice);
    dictating.press(dictating.hotkeys.voiceDictationHotkey);
    dictating.pass();
    EXPECT_EQ(dictating.state(), Case::processing);

    Table speaking;
    speaking.bringTo(Case::listeningVoice);
    speaking.press(speaking.hotkeys.cancelHotkey);
    EXPECT_EQ(speaking.speech.cancelled, 1);
    EXPECT_FALSE(speaking.audioInput.running);
    speaking.loop.runToEnd();
    EXPECT_EQ(speaking.state(), Case::idle);

    Table filming;
    filming.bringTo(Case::recordingVideo);
    ASSERT_TRUE(filming.loop.hasTimers()) << "frames are taken";
    filming.press(filming.hotkeys.cancelHotkey);
    filming.loop.runToEnd();
    EXPECT_FALSE(filming.loop.hasTimers()) << "no frame is taken any more";
    EXPECT_TRUE(filming.generator.requests.empty());
}

TEST(StateTableOther, SilenceEndsARecordingAsItsHotkeyWould) {
    for (const auto trigger : {InputTrigger::voice, InputTrigger::voiceDictation}) {
        Table table;
        table.bringTo(Case::listeningVoice, trigger);
        table.loop.advance(1600ms);  // 0.3 seconds have passed already
        EXPECT_EQ(table.state(), Case::listeningVoice);
        table.loop.advance(200ms);
        EXPECT_EQ(table.state(), Case::processing);
        table.loop.advance(2s);
        EXPECT_EQ(table.state(), Case::idle) << "nothing was said";
    }
}

}  // namespace tavrelon::input
