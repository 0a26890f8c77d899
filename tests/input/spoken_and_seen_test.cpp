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
    void hear(const char* text) {
        desk.speech.hear(QString::fromUtf8(text));
        pass();
    }
};

TEST_F(SpokenTest, AFinalResultAfterTheStopIsUsedAndABlankUpdateRestartsNothing) {
    desk.change([](auto& settings) { settings.enableAI = false; });
    desk.machine->handleVoiceDictationHotkey();
    pass();
    desk.loop.advance(1500ms);
    hear("  ");
    desk.loop.advance(600ms);
    ASSERT_EQ(desk.state(), Case::processing) << "blank updates do not keep the recording open";
    desk.loop.advance(500ms);
    desk.speech.hearFinally(QStringLiteral("late words"));
    desk.loop.advance(500ms);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("late words"));
    EXPECT_TRUE(desk.generator.requests.empty());
    EXPECT_TRUE(desk.history.entries().empty());
    desk.loop.advance(1s);
    EXPECT_EQ(desk.state(), Case::idle);
}

TEST_F(SpokenTest, SilenceCountsFromWhenTheRecogniserHears) {
    desk.speech.loadsLate = true;
    desk.machine->handleVoiceDictationHotkey();
    desk.loop.advance(20s);
    EXPECT_EQ(desk.state(), Case::listeningVoice);
    EXPECT_TRUE(desk.machine->isRecogniserLoading());
    desk.audioInput.sound(16000);
    desk.speech.load();
    desk.loop.advance(1900ms);
    EXPECT_EQ(desk.state(), Case::listeningVoice);
    EXPECT_FALSE(desk.machine->isRecogniserLoading());
    hear("said while it loaded");
    desk.loop.advance(5s);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("said while it loaded"));
    desk.machine->handleVoiceDictationHotkey();
    pass();
    desk.machine->handleVoiceDictationHotkey();  // all was said before it was loaded
    desk.loop.advance(20s);
    desk.speech.load();
    desk.speech.hearFinally(QStringLiteral(" and more"));
    desk.loop.advance(1s);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("said while it loadedand more"));
    desk.loop.advance(1s);
    desk.machine->handleVoiceDictationHotkey();
    desk.loop.advance(61s);
    const auto never = QStringLiteral("Speech recognition is not available on this device");
    EXPECT_EQ(desk.state(), InputState::error(never)) << "it never hears";
    EXPECT_FALSE(desk.audioInput.running);
    desk.machine->handleVoiceDictationHotkey();
    pass();
    desk.machine->handleVoiceDictationHotkey();
    pass();
    desk.speech.fail(true);
    desk.loop.advance(200ms);
    EXPECT_EQ(desk.state(), InputState::error(never)) << "pressed meanwhile";
}

TEST_F(SpokenTest, AFieldThatRefusesTheTranscriptStillGetsTheAnswer) {
    desk.editor.open(QString());
    desk.machine->handleVoiceHotkey();
    pass();
    hear("hello");
    desk.workspace.focusNothing();
    desk.machine->handleVoiceHotkey();
    desk.loop.advance(1ms);
    EXPECT_TRUE(desk.log.contains(
        QStringLiteral("[StateMachine] Failed to insert voice transcript: Answer is on the clipboard")));
}

TEST_F(SpokenTest, ASelectionIsWhatARequestIsAboutAndStaysUntilTheAnswer) {
    desk.editor.open(QStringLiteral("say chosen words"));
    desk.editor.select(4, 6);
    desk.generator.delay = 1s;
    desk.speech.finishesLate = true;
    desk.machine->handleVoiceHotkey();
    pass();
    hear("translate");
    desk.machine->handleVoiceHotkey();
    desk.loop.advance(400ms);
    desk.speech.hearFinally(QStringLiteral("translate this"));
    desk.loop.advance(700ms);
    ASSERT_EQ(desk.generator.requests.size(), 1U);
    EXPECT_EQ(desk.generator.requests.front().input, QStringLiteral("translate this")) << "its last word, too";
    EXPECT_EQ(desk.generator.requests.front().context->selection, QStringLiteral("chosen"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("say chosen words"));
    desk.loop.advance(2s);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("say ANSWER words"));
}

TEST_F(SpokenTest, WhatIsSaidForOneWindowIsNotWrittenIntoAnother) {
    const auto elsewhere = [this](auto begin) {
        desk.editor.open(QString());
        const auto home = *desk.workspace.frontmostApplication();
        begin();
        pass();
        hear("words");
        desk.workspace.focusOwnWindow();
        desk.loop.advance(6s);
        EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Answer is on the clipboard")));
        EXPECT_EQ(desk.editor.text(), QString());
        desk.workspace.activate(home);
        return desk.pasteboard.text();
    };
    EXPECT_EQ(elsewhere([this] { desk.machine->handleVoiceDictationHotkey(); }), QStringLiteral("words"));
    EXPECT_EQ(elsewhere([this] { desk.machine->handleVoiceHotkey(); }), QStringLiteral("ANSWER"));
    desk.generator.delay = 3s;
    EXPECT_EQ(elsewhere([this] { desk.machine->startAutoReply(); }), QStringLiteral("ANSWER"));
}

TEST_F(SpokenTest, WhoeverFallsSilentEndsInIdleWithTheWordsWrittenIfThereWereAny) {
    const auto dictate = [this](auto happen) {
        desk.editor.open(QString());
        desk.machine->handleVoiceDictationHotkey();
        pass();
        happen();
        desk.loop.runToEnd();
        EXPECT_EQ(desk.state(), Case::idle);
        EXPECT_EQ(desk.machine->lastError(), std::nullopt);
        EXPECT_FALSE(desk.audioInput.running);
        return desk.editor.text();
    };
    EXPECT_EQ(dictate([] {}), QString()) << "nothing was said";
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] No dictation transcript to insert")));
    EXPECT_EQ(dictate([this] { desk.speech.fail(); }), QString());
    EXPECT_EQ(dictate([this] {
                  hear("half");
                  desk.speech.fail();
              }),
              QStringLiteral("half"));
    EXPECT_EQ(dictate([this] {
                  desk.loop.advance(3300ms);  // the silence and the wait
                  desk.speech.hearFinally(QStringLiteral("too late"));
              }),
              QString());
    desk.speech.finishesLate = true;
    EXPECT_EQ(dictate([this] {
                  hear("unplu");
                  desk.audioInput.unplug();
                  pass();
                  desk.speech.hearFinally(QStringLiteral("unplugged"));
              }),
              QStringLiteral("unplugged"));
}

TEST_F(SpokenTest, ATranscriptThatWasInsertedStaysWhenTheAnswerIsCancelled) {
    desk.generator.delay = 10s;
    desk.machine->handleVoiceHotkey();
    pass();
    hear("hello");
    desk.machine->handleVoiceHotkey();
    desk.loop.advance(2s);
    ASSERT_EQ(desk.state(), Case::processing);
    desk.machine->cancelInput();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.state(), Case::idle);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("hello"));
}

TEST_F(SpokenTest, ARecordingThatTheLastFlowsEndTakesAwayLeavesNoMicrophoneOpen) {
    desk.machine->handleVoiceDictationHotkey();
    pass();
    hear("one");
    desk.machine->handleVoiceDictationHotkey();
    desk.loop.advance(1s);
    ASSERT_EQ(desk.state(), Case::completed);
    desk.machine->handleVoiceDictationHotkey();
    pass();
    ASSERT_EQ(desk.state(), Case::listeningVoice);
    ASSERT_TRUE(desk.audioInput.running);
    desk.loop.runToEnd();
    EXPECT_EQ(desk.state(), Case::idle);
    EXPECT_FALSE(desk.audioInput.running);
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
    EXPECT_EQ(desk.generator.requests.back().context->screenshotData, "jpeg 100x50 w 0.7") << "the picture goes along";
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

TEST_F(SpokenTest, VideoWithoutRightOrFramesIsAnError) {
    desk.screenCapture.permitted = false;
    desk.machine->startVideoInput();
    pass();
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Screen recording permission required")));
    desk.screenCapture.permitted = true;
    desk.screenCapture.windows.clear();
    desk.machine->startVideoInput();
    pass();
    desk.machine->stopVideoInput();
    desk.loop.advance(1s);
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Generation failed: No video frames captured")));
}

}  // namespace tavrelon::input
