// The program itself, spoken to.
#include <gtest/gtest.h>

#include "desktop/voice_session.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

class VoiceDesktopTest : public VoiceDesk, public ::testing::Test {
 public:
    static text::Json slowToEnd() {
        // A loaded machine takes its time to understand.
        return {{"voiceDictationSilenceTimeoutSeconds", 6.0}, {"voiceInputSilenceTimeoutSeconds", 6.0}};
    }
    QString firstQuestion() {
        const auto requests = service.ledger().requests();
        if (requests.empty())
            return {};
        return QString::fromUtf8(requests.front().body);
    }
};

TEST_F(VoiceDesktopTest, WhatIsDictatedStandsInTheFieldWithoutAModelAndNothingRunsAfterwards) {
    RunningEditor editor(RunningEditor::Kind::Mousepad, keyboard, QString());
    auto settings = slowToEnd();
    settings["enableAI"] = false;
    RunningTavrelon tavrelon(service, {settings, installRecogniser});
    startSpeaking({place::leftControl, place::leftShift});
    EXPECT_EQ(soundThreadCount(tavrelon.process()), 2);
    sound.say(greeting);
    EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; })) << "silence does not end it";
    EXPECT_EQ(editor.saved(greeting), greeting) << qPrintable(tavrelon.log());
    EXPECT_TRUE(service.ledger().requests().empty());
    EXPECT_EQ(tavrelon.historyCount(), 0);
    EXPECT_TRUE(eventually([&] { return soundThreadCount(tavrelon.process()) == 0; }));
    EXPECT_EQ(tavrelon.terminate(), 0) << qPrintable(tavrelon.log());
}

TEST_F(VoiceDesktopTest, ASpokenRequestIsAnsweredInPlace) {
    RunningEditor editor(RunningEditor::Kind::Featherpad, keyboard, QString());
    RunningTavrelon tavrelon(service, {slowToEnd(), installRecogniser});
    answer(QStringLiteral("ONCE UPON A TIME"));
    startSpeaking({place::leftControl, place::leftAlt});
    sound.say(wish);
    ASSERT_TRUE(eventually([&] { return tavrelon.historyCount() == 1; })) << qPrintable(tavrelon.log());
    EXPECT_TRUE(firstQuestion().contains(wish)) << qPrintable(firstQuestion());
    EXPECT_EQ(editor.saved(QStringLiteral("ONCE UPON A TIME")), QStringLiteral("ONCE UPON A TIME"));
    EXPECT_EQ(sound.recordings(), 0);
    EXPECT_EQ(tavrelon.terminate(), 0) << qPrintable(tavrelon.log());
}

TEST_F(VoiceDesktopTest, EscapeDropsWhatWasSaidAndAMissingMicrophoneIsNoHarm) {
    RunningEditor editor(RunningEditor::Kind::Mousepad, keyboard, QStringLiteral("as it was"));
    RunningTavrelon tavrelon(service, {slowToEnd(), installRecogniser});
    startSpeaking({place::leftControl, place::leftShift});
    sound.say(greeting);
    keyboard.strike(place::escape);
    EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; }));
    sound.unplugMicrophone();
    press({place::leftControl, place::leftShift});
    EXPECT_TRUE(tavrelon.waitForLog(QStringLiteral("[StateMachine] Failed to start voice dictation: "
                                                   "No microphone input device is available."),
                                    1))
        << qPrintable(tavrelon.log());
    sound.plugMicrophone();
    startSpeaking({place::leftControl, place::leftShift});
    EXPECT_EQ(editor.saved(QStringLiteral("as it was")), QStringLiteral("as it was"));
    EXPECT_EQ(tavrelon.terminate(), 0) << qPrintable(tavrelon.log());
}

TEST_F(VoiceDesktopTest, WithoutARecogniserTheUserIsTold) {
    RunningEditor editor(RunningEditor::Kind::Mousepad, keyboard, QString());
    RunningTavrelon tavrelon(service);
    press({place::leftControl, place::leftAlt});
    EXPECT_TRUE(tavrelon.waitForLog(QStringLiteral("[StateMachine] Failed to start voice recording: "
                                                   "Speech recognition is not available on this device"),
                                    1))
        << qPrintable(tavrelon.log());
    EXPECT_TRUE(tavrelon.log().contains(QStringLiteral("[Speech] No recogniser: looked for the library in ")));
}

}  // namespace tavrelon::testing
