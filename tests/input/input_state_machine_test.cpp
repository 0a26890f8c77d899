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

TEST_F(InputStateMachineTest, APressWhileAnEndIsShownTakesTheStage) {
    const auto failure = tavrelon::testing::FakeGenerator::Failure{QStringLiteral("no")};
    for (const bool fails : {false, true}) {
        if (fails)
            desk.generator.script.assign(3, failure);
        desk.request(QStringLiteral("first"));
        desk.loop.advance(fails ? 5s : 1s);
        ASSERT_EQ(desk.state(), fails ? InputState::error(QStringLiteral("Generation failed: no")) : Case::completed);
        desk.press(desk.hotkeys.toggleHotkey);
        desk.machine->returnToIdle();  // the display's own time is up before the new state shows
        desk.loop.runUntilIdle();
        desk.type(QStringLiteral("second"));
        desk.loop.advance(3s);
        EXPECT_EQ(desk.state(), Case::listening);
        EXPECT_EQ(desk.machine->typedInputBuffer(), QStringLiteral("second"));
        desk.generator.delay = 30s;
        desk.toggle();
        desk.loop.advance(10s);
        EXPECT_EQ(desk.state(), Case::processing);
        desk.press(desk.hotkeys.cancelHotkey);
        desk.loop.runToEnd();
        desk.generator.delay = 0s;
    }
    desk.request(QStringLiteral("first"));
    desk.loop.advance(1s);
    desk.machine->handleVoiceHotkey();
    desk.loop.advance(1900ms);
    EXPECT_EQ(desk.state(), Case::listeningVoice);
    EXPECT_TRUE(desk.audioInput.running);
}

TEST_F(InputStateMachineTest, TheFirstLettersCountWhileTheFieldIsStillBeingRead) {
    desk.press(desk.hotkeys.toggleHotkey);
    desk.type(QStringLiteral("qu"));  // the state shows a turn later
    desk.loop.runUntilIdle();
    desk.type(QStringLiteral("ick"));
    EXPECT_EQ(desk.machine->typedInputBuffer(), QStringLiteral("quick"));
}

TEST_F(InputStateMachineTest, WhatWasTypedIsForgottenWhenTheKeyboardLeavesOrRests) {
    const std::vector<std::function<void()>> ends{[this] { desk.keyboard.observer.leave(); },
                                                  [this] { desk.loop.advance(2min); }};
    for (const auto& end : ends) {
        desk.toggle();
        desk.loop.advance(119s);
        desk.type(QStringLiteral("secret"));
        desk.loop.advance(119s);
        ASSERT_EQ(desk.state(), Case::listening);
        end();
        desk.loop.runUntilIdle();
        EXPECT_EQ(desk.state(), Case::idle);
        EXPECT_EQ(desk.machine->typedInputBuffer(), QString());
        EXPECT_FALSE(desk.keyboard.observer.isRunning());
    }
    desk.toggle();
    desk.toggle();
    EXPECT_FALSE(desk.keyboard.observer.isRunning()) << "nothing is recorded once it is committed";
}

TEST_F(InputStateMachineTest, ACancelledRequestNeverWritesAndShowsNothing) {
    desk.generator.delay = 5s;
    desk.request(QStringLiteral("question"));
    desk.loop.advance(1s);
    ASSERT_EQ(desk.generator.requests.size(), 1U);
    EXPECT_EQ(desk.press(desk.hotkeys.cancelHotkey), tavrelon::testing::Taken::ByUs);
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
    EXPECT_EQ(desk.history.entries().size(), 1U) << "the answer is not lost";
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

    desk.capturer.screenshots.screenshotMode = capture::ScreenshotMode::none;
    desk.machine->startVideoInput();
    desk.loop.runUntilIdle();
    EXPECT_TRUE(isExpected()) << "a video has its pictures in every mode";
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
    auto& keyboard = desk.keyboard;
    keyboard.press(keys::keyBackspace, {}, QStringLiteral("\b"));
    EXPECT_EQ(buffer, QString());
    keyboard.press(keys::keyA, keys::shiftFlag, QStringLiteral("A"));
    keyboard.press(keys::keyA, keys::controlFlag, QStringLiteral("\u0001"));
    keyboard.press(keys::keyA, keys::commandFlag, QStringLiteral("a"));
    keyboard.press(keys::keyA, keys::optionFlag, QStringLiteral("å"));
    EXPECT_EQ(buffer, QStringLiteral("A")) << "shortcuts type nothing";
    keyboard.press(keys::keyReturn, {}, QStringLiteral("\r"));
    keyboard.press(keys::keyTab, {}, QStringLiteral("\t"));
    keyboard.press(keys::keyKeypadEnter, {}, QStringLiteral("\r"));
    keyboard.press(123, {}, QStringLiteral("\uF702"));  // an arrow key
    keyboard.press(120, {}, QStringLiteral("a\u200Db\u0007"));
    EXPECT_EQ(buffer, QStringLiteral("A\n\t\nab"));
    keyboard.press(keys::keyForwardDelete, {}, {});
    keyboard.press(120, {}, QStringLiteral("👨‍👩‍👧").remove(QChar(0x200D)));
    keyboard.press(keys::keyBackspace, {}, {});
    EXPECT_EQ(buffer, QStringLiteral("A\n\t\na👨👩"));
}

TEST_F(InputStateMachineTest, TasksEndWithTheMachine) {
    desk.generator.delay = 5s;
    desk.request(QStringLiteral("question"));
    desk.loop.advance(1s);
    desk.machine.reset();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("question"));
    desk.press(desk.hotkeys.toggleHotkey);  // which has nobody to act on it
}

}  // namespace tavrelon::input
