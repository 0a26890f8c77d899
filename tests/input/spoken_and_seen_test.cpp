// Voice input, dictation, auto-reply and video on a desktop of fakes.
#include <gtest/gtest.h>

#include "support/input_desk.h"
#include "support/qt_gtest.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using tavrelon::testing::InputDesk;
using Case = InputState::Case;

class SpokenTest : public ::testing::Test {
 public:
    InputDesk desk;
    void pass() { desk.loop.runUntilIdle(); }
};

TEST_F(SpokenTest, TheAnswerReplacesWhatWasSaid) {
    desk.editor.open(QStringLiteral("Dear "));
    desk.machine->handleVoiceHotkey();
    pass();
    desk.recognizer.transcript = QStringLiteral(" hello there ");
    pass();
    EXPECT_EQ(desk.machine->currentTranscript(), QStringLiteral(" hello there "));
    desk.machine->handleVoiceHotkey();
    desk.loop.runToEnd();
    ASSERT_EQ(desk.generator.requests.size(), 1U);
    EXPECT_EQ(desk.generator.requests.front().input, QStringLiteral("hello there"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("Dear ANSWER"));
}

TEST_F(SpokenTest, AFinalResultAfterTheStopIsUsedAndABlankUpdateRestartsNothing) {
    desk.machine->handleVoiceDictationHotkey();
    pass();
    desk.loop.advance(1500ms);
    desk.recognizer.transcript = QStringLiteral("  ");
    desk.loop.advance(600ms);
    ASSERT_EQ(desk.state(), Case::processing) << "blank updates do not keep the recording open";
    desk.loop.advance(500ms);
    desk.recognizer.transcript = QStringLiteral("late words");
    desk.loop.advance(500ms);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("late words"));
    EXPECT_TRUE(desk.generator.requests.empty());
    EXPECT_TRUE(desk.history.entries().empty());
    desk.loop.advance(1s);
    EXPECT_EQ(desk.state(), Case::idle);
}

TEST_F(SpokenTest, AFieldThatRefusesTheTranscriptStillGetsTheAnswer) {
    desk.editor.open(QStringLiteral("chosen"));
    desk.editor.select(0, 6);
    desk.machine->handleVoiceHotkey();
    pass();
    desk.recognizer.transcript = QStringLiteral("hello");
    pass();
    desk.workspace.focusNothing();
    desk.machine->handleVoiceHotkey();
    desk.loop.advance(1ms);
    EXPECT_TRUE(desk.log.contains(
        QStringLiteral("[StateMachine] Failed to insert voice transcript: No frontmost application found")));
}

TEST_F(SpokenTest, ARecognizerThatCannotStartIsAnError) {
    desk.recognizer.startFailure = QStringLiteral("No microphone");
    desk.machine->handleVoiceHotkey();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("No microphone")));
    EXPECT_EQ(desk.machine->lastError(), std::nullopt);
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] Failed to start voice recording: No microphone")));
}

TEST_F(SpokenTest, ATimeoutOfZeroKeepsTheRecordingOpen) {
    desk.change([](auto& settings) { settings.voiceInputSilenceTimeoutSeconds = 0; });
    desk.machine->handleVoiceHotkey();
    desk.loop.advance(1h);
    EXPECT_EQ(desk.state(), Case::listeningVoice);
}

TEST_F(SpokenTest, AutoReplyAnswersTheSelectionOrTheContext) {
    const auto reply = [this] {
        desk.machine->startAutoReply();
        desk.loop.runToEnd();
    };
    desk.editor.open(QStringLiteral("see you at 8?"));
    reply();
    EXPECT_EQ(desk.generator.requests.back().input,
              QStringLiteral("请根据当前上下文直接输出一条合适的回复正文，不要加前缀或解释。"));
    EXPECT_EQ(desk.history.entries().front().inputText, QString());
    EXPECT_EQ(desk.editor.text(), QStringLiteral("see you at 8?ANSWER"));
    EXPECT_EQ(desk.keyPoster.count(keys::keyBackspace, keys::noModifiers), 0);

    desk.editor.select(0, 13);
    reply();
    EXPECT_EQ(desk.generator.requests.back().input,
              QStringLiteral("请直接输出回复正文，不要加前缀或解释：\nsee you at 8?"));
    EXPECT_EQ(desk.history.entries().front().intent, QStringLiteral("reply"));
    EXPECT_TRUE(desk.learner.recorded.isEmpty());
    EXPECT_EQ(desk.state(), Case::idle);
}

TEST_F(SpokenTest, VideoFramesAreDescribedInPlaceOfTheTypedPrompt) {
    desk.machine->startVideoInput();
    pass();
    desk.editor.type(QStringLiteral("what moves?"));
    desk.machine->stopVideoInput();
    desk.loop.runToEnd();
    ASSERT_EQ(desk.generator.videos.size(), 1U);
    EXPECT_EQ(desk.generator.requests.front().input, QStringLiteral("what moves?"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("ANSWER"));
    EXPECT_EQ(desk.history.entries().front().intent, QStringLiteral("video"));
}

TEST_F(SpokenTest, VideoWithoutRightOrFramesIsAnError) {
    desk.screenCapture.permitted = false;
    desk.machine->startVideoInput();
    pass();
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Screen recording permission required")));
    desk.screenCapture.permitted = true;
    desk.recorder.frames.clear();
    desk.machine->startVideoInput();
    pass();
    desk.machine->stopVideoInput();
    desk.loop.advance(1s);
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Generation failed: No video frames captured")));
}

}  // namespace tavrelon::input
