// The effect of each event in each state, cell by cell, through the listener and on virtual time.
#include <gtest/gtest.h>

#include "support/input_desk.h"
#include "support/qt_gtest.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using tavrelon::testing::FakeGenerator;
using tavrelon::testing::InputDesk;
using tavrelon::testing::Taken;
using Case = InputState::Case;

/// What the application root wires on top of the listener.
struct Table : InputDesk {
    Table() {
        generator.delay = 10s;
        hotkeys.voiceHotkey = {96, keys::noModifiers};  // real keys, so that one press is one event
        hotkeys.voiceDictationHotkey = {97, keys::noModifiers};
        hotkeys.refresh();
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

/// Idle, listening, listening to a voice, recording, processing, completed, error.
constexpr std::string_view states = "ILVRPCE";

Case stateNamed(char letter) {
    return static_cast<Case>(states.find(letter));
}

struct Row {
    const char* name;
    keys::HotkeyConfig hotkey;
    const char* after;                                   ///< the state after the event, for each state before it
    const char* taken;                                   ///< t where the press is ours, - where the application gets it
    std::optional<InputTrigger> trigger = std::nullopt;  ///< set where a new input begins
    std::array<const char*, states.size()> logged{};
};

class StateTable : public ::testing::TestWithParam<Row> {};

TEST_P(StateTable, EveryCell) {
    const auto& row = GetParam();
    for (std::size_t cell = 0; cell < states.size(); ++cell) {
        SCOPED_TRACE(states[cell]);
        const auto before = stateNamed(states[cell]);
        Table table;
        table.bringTo(before);
        EXPECT_EQ(table.press(row.hotkey), row.taken[cell] == 't' ? Taken::ByUs : Taken::ByApplication);
        table.pass();
        EXPECT_EQ(table.state(), stateNamed(row.after[cell]));
        if (row.logged[cell])
            EXPECT_TRUE(table.log.contains(QString::fromLatin1(row.logged[cell]))) << row.logged[cell];
        if (row.trigger && row.after[cell] != states[cell] && InputState(before).acceptsNewInput())
            EXPECT_EQ(table.machine->activeTrigger(), row.trigger);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Hotkeys, StateTable,
    ::testing::Values(Row{"toggle",
                          keys::defaults::toggleHotkey,
                          "LPVRPLL",
                          "ttttttt",
                          InputTrigger::text,
                          {"[Hotkey] Starting text listening", "[Hotkey] Committing text input",
                           "[Hotkey] Ignored - voice mode active", "[Hotkey] Ignored - video mode active",
                           "[Hotkey] Ignored while processing"}},
                      Row{"voice", {96, keys::noModifiers}, "VLPRPVV", "ttttttt", InputTrigger::voice},
                      // A recording for voice input is not a dictation.
                      Row{"dictation", {97, keys::noModifiers}, "VLVRPVV", "ttttttt", InputTrigger::voiceDictation},
                      Row{"video", keys::defaults::videoHotkey, "RLVPPRR", "t--t-tt", InputTrigger::video},
                      Row{"autoReply", keys::defaults::autoReplyHotkey, "PLVRPPP", "t----tt", InputTrigger::autoReply},
                      Row{"cancel", keys::defaults::cancelHotkey, "IIIIICE", "-tttt--"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(StateTableOther, FloatingTextAndResetInEachState) {
    for (const auto letter : states) {
        const auto before = stateNamed(letter);
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

}  // namespace tavrelon::input
