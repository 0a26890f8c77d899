#include "input/input_state_machine.h"

#include <gtest/gtest.h>

#include "support/input_desk.h"
#include "support/qt_gtest.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using tavrelon::testing::InputDesk;
using Case = InputState::Case;

class InputStateMachineTest : public ::testing::Test {
 public:
    InputDesk desk;
};

TEST_F(InputStateMachineTest, ASecondPressInTheSameTurnDoesNotCommit) {
    desk.press(desk.hotkeys.toggleHotkey);
    desk.press(desk.hotkeys.toggleHotkey);
    desk.loop.runUntilIdle();
    EXPECT_EQ(desk.state(), Case::listening);
}

TEST_F(InputStateMachineTest, AnInputOpenedDuringThePauseIsResetByTheOldTask) {
    desk.request(QStringLiteral("first"));
    desk.loop.advance(1s);
    ASSERT_EQ(desk.state(), Case::completed);
    desk.toggle();
    desk.type(QStringLiteral("second"));
    ASSERT_EQ(desk.state(), Case::listening);
    desk.loop.advance(2s);
    EXPECT_EQ(desk.state(), Case::idle);
    EXPECT_TRUE(desk.machine->typedInputBuffer().isEmpty());
}

TEST_F(InputStateMachineTest, ATaskThatWasReplacedDuringItsPauseDoesNotReset) {
    desk.request(QStringLiteral("first"));
    desk.loop.advance(1s);
    ASSERT_EQ(desk.state(), Case::completed);
    desk.generator.delay = 30s;
    desk.machine->submitFloatingInput(QStringLiteral("second"));
    desk.loop.advance(5s);
    EXPECT_EQ(desk.state(), Case::processing);
    EXPECT_EQ(desk.machine->activeTrigger(), InputTrigger::floatingInput);
}

TEST_F(InputStateMachineTest, ACancelledRequestNeverWritesAndShowsNothing) {
    desk.generator.delay = 5s;
    desk.request(QStringLiteral("question"));
    desk.loop.advance(1s);
    ASSERT_EQ(desk.generator.requests.size(), 1U);
    EXPECT_EQ(desk.press(desk.hotkeys.cancelHotkey), platform::TapVerdict::Drop);
    desk.loop.runToEnd();
    EXPECT_EQ(desk.state(), Case::idle);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("question"));
    EXPECT_EQ(desk.machine->lastError(), std::nullopt);
    EXPECT_TRUE(desk.history.entries().empty());
    EXPECT_FALSE(desk.pasteboard.text());
}

TEST_F(InputStateMachineTest, ACancelDuringTheWriteStopsAtTheNextKey) {
    desk.request(QStringLiteral("0123456789"));
    while (desk.keyPoster.strokes().size() < 3)
        desk.loop.advance(1ms);
    desk.press(desk.hotkeys.cancelHotkey);
    desk.loop.runToEnd();
    EXPECT_EQ(desk.keyPoster.strokes().size(), 3U);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("0123456"));
    EXPECT_EQ(desk.keyPoster.asideDepth(), 0) << "held modifiers are given back";
    EXPECT_TRUE(desk.history.entries().empty());
}

TEST_F(InputStateMachineTest, APictureIsExpectedFromTheFirstPressUntilItIsTaken) {
    const auto isExpected = [this] { return desk.screenCapture.expectation.use_count() > 1; };
    desk.generator.delay = 5s;
    desk.toggle();
    EXPECT_TRUE(isExpected());
    desk.type(QStringLiteral("question"));
    desk.toggle();
    desk.loop.advance(1s);
    ASSERT_EQ(desk.generator.requests.size(), 1U);
    EXPECT_FALSE(isExpected());
    desk.loop.runToEnd();

    desk.toggle();
    EXPECT_TRUE(isExpected());
    desk.press(desk.hotkeys.cancelHotkey);
    desk.loop.runUntilIdle();
    EXPECT_FALSE(isExpected());
}

TEST_F(InputStateMachineTest, CancelKeepsTheLastErrorAndResetClearsIt) {
    desk.generator.script = {tavrelon::testing::FakeGenerator::Failure{QStringLiteral("a")},
                             tavrelon::testing::FakeGenerator::Failure{QStringLiteral("b")},
                             tavrelon::testing::FakeGenerator::Failure{QStringLiteral("c")}};
    desk.request(QStringLiteral("question"));
    desk.loop.runToEnd();
    ASSERT_EQ(desk.state(), InputState::error(QStringLiteral("Generation failed: c")));
    desk.toggle();
    desk.press(desk.hotkeys.cancelHotkey);
    desk.loop.runToEnd();
    EXPECT_EQ(desk.state(), Case::idle);
    EXPECT_EQ(desk.machine->lastError(), QStringLiteral("Generation failed: c"));
    desk.machine->resetToIdle();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.machine->lastError(), std::nullopt);
}

TEST_F(InputStateMachineTest, AIThatIsOffEndsInputsButDictation) {
    desk.change([](auto& settings) { settings.enableAI = false; });
    const auto disabled = InputState::error(QStringLiteral("AI is disabled"));
    const std::vector<std::function<void()>> starts{
        [this] { desk.machine->startTextInput(); }, [this] { desk.machine->handleVoiceHotkey(); },
        [this] { desk.machine->startVideoInput(); }, [this] { desk.machine->startAutoReply(); },
        [this] { desk.machine->submitFloatingInput(QStringLiteral("x")); }};
    for (const auto& start : starts) {
        desk.machine->resetToIdle();
        desk.loop.runUntilIdle();
        desk.log.clear();
        start();
        desk.loop.runUntilIdle();
        EXPECT_EQ(desk.state(), disabled);
        EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] AI is disabled")));
        EXPECT_EQ(desk.machine->lastError(), disabled.message);
    }
    desk.machine->handleVoiceDictationHotkey();
    desk.loop.runUntilIdle();
    EXPECT_EQ(desk.state(), Case::listeningVoice);
    EXPECT_TRUE(desk.generator.requests.empty());
}

TEST_F(InputStateMachineTest, NoInputStartsInAPasswordField) {
    desk.editor.open(QStringLiteral("hunter2"));
    desk.editor.select(0, 7);
    desk.accessibility.fieldKind = platform::FocusKind::Password;
    const std::vector<std::function<void()>> starts{[this] { desk.machine->startTextInput(); },
                                                    [this] { desk.machine->handleVoiceHotkey(); },
                                                    [this] { desk.machine->handleVoiceDictationHotkey(); },
                                                    [this] { desk.machine->startVideoInput(); },
                                                    [this] { desk.machine->startAutoReply(); },
                                                    [this] { desk.machine->submitFloatingInput(QStringLiteral("x")); }};
    for (const auto& start : starts) {
        desk.machine->resetToIdle();
        desk.loop.runUntilIdle();
        start();
        desk.loop.runToEnd();
        EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Password field")));
        EXPECT_FALSE(desk.audioInput.running);
    }
    EXPECT_TRUE(desk.generator.requests.empty());
    EXPECT_TRUE(desk.keyPoster.strokes().empty());
    EXPECT_FALSE(desk.pasteboard.text());
    for (const auto& line : desk.log.lines())
        EXPECT_FALSE(line.contains(QStringLiteral("length: 7"))) << line.toStdString();
}

TEST_F(InputStateMachineTest, AnInputIsForgottenWhereAPasswordFieldHasTheFocusByThen) {
    const auto expectForgotten = [this](auto happen) {
        desk.editor.open(QString());
        desk.toggle();
        desk.type(QStringLiteral("half a request"));
        desk.accessibility.fieldKind = platform::FocusKind::Password;
        happen();
        desk.loop.runUntilIdle();
        EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Password field")));
        EXPECT_EQ(desk.machine->typedInputBuffer(), QString());
        EXPECT_FALSE(desk.machine->initialTextSnapshot);
        desk.accessibility.fieldKind = platform::FocusKind::Ordinary;
        desk.loop.runToEnd();
    };
    expectForgotten([this] { desk.toggle(); });                     // the second press
    expectForgotten([this] { desk.accessibility.tellOfFocus(); });  // without any press
    expectForgotten([this] {
        desk.accessibility.fieldKind = platform::FocusKind::Ordinary;
        desk.accessibility.tellOfFocus();
        desk.accessibility.fieldKind = platform::FocusKind::Password;  // its window comes to the front a little later
        desk.loop.advance(200ms);
    });
    expectForgotten([this] {
        desk.accessibility.fieldKind = platform::FocusKind::Ordinary;
        desk.press(desk.hotkeys.toggleHotkey);
        desk.accessibility.fieldKind = platform::FocusKind::Password;  // within the turn of the second press
    });
    EXPECT_TRUE(desk.generator.requests.empty());
    EXPECT_TRUE(desk.history.entries().empty());
    EXPECT_TRUE(desk.learner.recorded.isEmpty());
}

TEST_F(InputStateMachineTest, SpeechAndFilmEndInAPasswordFieldToo) {
    desk.change([](auto& settings) { settings.voiceInputSilenceTimeoutSeconds = 0; });
    for (const bool films : {true, false}) {
        const auto toggle = [&] {
            if (!films)
                desk.machine->handleVoiceHotkey();
            else if (desk.state() == Case::recordingVideo)
                desk.machine->stopVideoInput();
            else
                desk.machine->startVideoInput();
        };
        desk.accessibility.fieldKind = platform::FocusKind::Ordinary;
        toggle();
        desk.loop.advance(100ms);
        desk.speech.hear(QStringLiteral("words"));
        desk.accessibility.fieldKind = platform::FocusKind::Password;
        desk.loop.advance(700ms);
        toggle();
        desk.loop.advance(5s);
        EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Password field")));
        EXPECT_FALSE(desk.audioInput.running);
    }
    EXPECT_TRUE(desk.generator.requests.empty());
    EXPECT_TRUE(desk.generator.videos.empty());
    EXPECT_TRUE(desk.keyPoster.strokes().empty());
}

TEST_F(InputStateMachineTest, TypedKeysAreCopiedAsAPersonWouldReadThem) {
    desk.toggle();
    const auto& buffer = desk.machine->typedInputBuffer();
    auto& tap = desk.eventTap;
    tap.press(keys::keyBackspace, {}, QStringLiteral("\b"));
    EXPECT_EQ(buffer, QString());
    tap.press(keys::keyA, keys::shiftFlag, QStringLiteral("A"));
    tap.press(keys::keyA, keys::controlFlag, QStringLiteral("\u0001"));
    tap.press(keys::keyA, keys::commandFlag, QStringLiteral("a"));
    tap.press(keys::keyA, keys::optionFlag, QStringLiteral("å"));
    EXPECT_EQ(buffer, QStringLiteral("Aå"));
    tap.press(keys::keyReturn, {}, QStringLiteral("\r"));
    tap.press(keys::keyTab, {}, QStringLiteral("\t"));
    tap.press(keys::keyKeypadEnter, {}, QStringLiteral("\r"));
    tap.press(123, {}, QStringLiteral("\uF702"));  // an arrow key
    tap.press(120, {}, QStringLiteral("a\u200Db\u0007"));
    EXPECT_EQ(buffer, QStringLiteral("Aå\n\t\nab"));
    tap.press(keys::keyForwardDelete, {}, {});
    tap.press(120, {}, QStringLiteral("👨‍👩‍👧").remove(QChar(0x200D)));
    tap.press(keys::keyBackspace, {}, {});
    EXPECT_EQ(buffer, QStringLiteral("Aå\n\t\na👨👩"));
}

TEST_F(InputStateMachineTest, TasksEndWithTheMachine) {
    desk.generator.delay = 5s;
    desk.request(QStringLiteral("question"));
    desk.loop.advance(1s);
    desk.machine.reset();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("question"));
    EXPECT_EQ(desk.press(desk.hotkeys.toggleHotkey), platform::TapVerdict::Pass) << "without a machine all keys pass";
}

}  // namespace tavrelon::input
