#include "media/speech_recognizer.h"

#include <gtest/gtest.h>

#include "media/speech_locale.h"
#include "support/qt_gtest.h"
#include "support/test_desktop.h"

namespace tavrelon::media {

using platform::AuthorizationStatus;
using Code = SpeechRecognizerError::Code;

namespace {

class Listener : public SpeechRecognizerDelegate {
 public:
    QStringList told;
    void didUpdateTranscript(SpeechRecognizer&, const QString& text, Finality finality) override {
        told << (finality == Finality::Final ? text + u'!' : text);
    }
    void didStartRecording(SpeechRecognizer&) override { told << QStringLiteral("start"); }
    void didStopRecording(SpeechRecognizer&) override { told << QStringLiteral("stop"); }
};

}  // namespace

class SpeechRecognizerTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desk;
    SpeechRecognizer recognizer{desk.platform};
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();

    SpeechRecognizerTest() { recognizer.delegate = listener; }
    void pass() { desk.loop.runUntilIdle(); }
    QString transcript() { return recognizer.bindableCurrentTranscript().value(); }
    bool isRecording() { return recognizer.bindableIsRecording().value(); }
    bool isAuthorized() { return recognizer.bindableIsAuthorized().value(); }

    void start() {
        recognizer.startRecording();
        pass();
    }
    /// Why it does not start.
    std::optional<Code> refusal() {
        try {
            recognizer.startRecording();
        } catch (const SpeechRecognizerError& error) {
            pass();
            EXPECT_FALSE(isRecording());
            return error.code();
        }
        return std::nullopt;
    }
};

TEST_F(SpeechRecognizerTest, WordsArriveWhileTheyAreSpokenAndTheFinalResultEndsTheRecording) {
    recognizer.startRecording();
    EXPECT_FALSE(isRecording()) << "a turn later";
    pass();
    EXPECT_TRUE(isRecording());
    EXPECT_TRUE(desk.speech.options.reportsPartialResults);
    EXPECT_TRUE(desk.speech.options.requiresOnDeviceRecognition);
    EXPECT_EQ(desk.speech.options.taskHint, platform::SpeechTaskHint::Dictation);
    desk.audioInput.sound(1024);
    EXPECT_EQ(desk.speech.request->samples, 1024U);

    desk.speech.hear(QStringLiteral("你"));
    EXPECT_EQ(transcript(), QString()) << "a turn later";
    desk.speech.hear(QStringLiteral("你好"));
    desk.speech.hearFinally(QStringLiteral("你好吗"));
    pass();
    EXPECT_EQ(transcript(), QStringLiteral("你好吗"));
    EXPECT_FALSE(isRecording());
    EXPECT_FALSE(desk.audioInput.running);
    EXPECT_EQ(desk.audioInput.tap, nullptr);
    EXPECT_EQ(listener->told, (QStringList{QStringLiteral("start"), QStringLiteral("你"), QStringLiteral("你好"),
                                           QStringLiteral("你好吗!"), QStringLiteral("stop")}));
}

TEST_F(SpeechRecognizerTest, AnInstalledModelServes) {
    const struct {
        const char *installed, *chosen, *interfaceLanguage, *locale;
    } cases[] = {
        {"", "de", "en", "zh-CN"},
        {"de,en-US,zh-CN", "de", "en", "de"},
        {"de,en-US,zh-CN", "", "en", "en-US"},
        {"de,zh-CN", "fr", "en", "zh-CN"},
        {"de", "", "en", "de"},
        {"eno,zh,en", "", "en", "en"},
    };
    for (const auto& [installed, chosen, interfaceLanguage, locale] : cases)
        EXPECT_EQ(speechLocale(QString::fromLatin1(installed).split(u',', Qt::SkipEmptyParts),
                               QString::fromLatin1(chosen), QString::fromLatin1(interfaceLanguage)),
                  QString::fromLatin1(locale));
    desk.speech.installed = {QStringLiteral("de")};
    start();
    EXPECT_EQ(desk.speech.options.locale, QStringLiteral("de"));
}

TEST_F(SpeechRecognizerTest, AStopStillBringsTheFinalResult) {
    start();
    recognizer.stopRecording();
    pass();
    EXPECT_FALSE(isRecording());
    EXPECT_FALSE(desk.audioInput.running);
    EXPECT_TRUE(desk.speech.request->ended);
    EXPECT_EQ(desk.speech.finished, 1);
    EXPECT_EQ(listener->told, QStringList{QStringLiteral("start")});
    desk.speech.hearFinally(QStringLiteral("late"));
    pass();
    EXPECT_EQ(transcript(), QStringLiteral("late"));
    EXPECT_EQ(listener->told.last(), QStringLiteral("stop"));
}

TEST_F(SpeechRecognizerTest, ASecondStartCancelsTheFirst) {
    start();
    const auto first = desk.speech.request;
    desk.speech.fail();  // its word is still on its way
    start();
    EXPECT_EQ(desk.speech.cancelled, 1);
    EXPECT_TRUE(isRecording());
    EXPECT_TRUE(desk.audioInput.running);
    desk.audioInput.sound(10);
    EXPECT_EQ(first->samples, 0U);
    EXPECT_EQ(desk.speech.request->samples, 10U);
}

TEST_F(SpeechRecognizerTest, WhatIsMissingIsToldInTheOrderOfTheQuestions) {
    desk.audioInput.plugged = false;
    desk.audioInput.status = AuthorizationStatus::NotDetermined;
    desk.speech.status = AuthorizationStatus::NotDetermined;
    desk.speech.available = false;
    EXPECT_EQ(refusal(), Code::recognizerNotAvailable);
    desk.speech.available = true;
    EXPECT_EQ(refusal(), Code::speechNotAuthorized);
    ASSERT_TRUE(desk.speech.asked);
    desk.speech.asked(AuthorizationStatus::Authorized);
    EXPECT_TRUE(isAuthorized());
    desk.speech.status = AuthorizationStatus::Restricted;
    EXPECT_EQ(refusal(), Code::speechNotAuthorized);
    EXPECT_FALSE(isAuthorized());
    desk.speech.status = AuthorizationStatus::Authorized;
    EXPECT_EQ(refusal(), Code::microphoneNotAuthorized);
    EXPECT_EQ(desk.audioInput.accessRequests, 1);
    desk.audioInput.status = AuthorizationStatus::Denied;
    EXPECT_EQ(refusal(), Code::microphoneNotAuthorized);
    EXPECT_EQ(desk.audioInput.accessRequests, 1) << "who said no is not asked again";
    desk.audioInput.status = AuthorizationStatus::Authorized;
    EXPECT_EQ(refusal(), Code::microphoneUnavailable);
    desk.audioInput.plugged = true;
    desk.speech.canMakeRequests = false;
    EXPECT_EQ(refusal(), Code::requestCreationFailed);
    desk.speech.canMakeRequests = true;
    desk.audioInput.channels = 0;
    EXPECT_EQ(refusal(), Code::microphoneUnavailable);
    desk.audioInput.channels = 2;
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(SpeechRecognizerTest, AMicrophoneThatDoesNotStartIsItsOwnErrorAndTheNextTryBeginsAfresh) {
    desk.audioInput.startError = {QStringLiteral("It is in use.")};
    try {
        recognizer.startRecording();
        FAIL() << "it started";
    } catch (const text::LocalizedError& error) {
        EXPECT_EQ(error.localizedDescription(), QStringLiteral("It is in use."));
    }
    pass();
    EXPECT_FALSE(isRecording());
    desk.audioInput.startError.reset();
    start();
    EXPECT_EQ(desk.speech.cancelled, 1);
    EXPECT_TRUE(isRecording());
}

TEST_F(SpeechRecognizerTest, WordThatComesAfterItsEndTouchesNothing) {
    auto gone = std::make_unique<SpeechRecognizer>(desk.platform);
    gone->startRecording();
    desk.speech.hear(QStringLiteral("x"));
    gone.reset();
    pass();
    EXPECT_FALSE(desk.audioInput.running);
}

}  // namespace tavrelon::media
