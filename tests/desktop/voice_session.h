#pragma once

#include "desktop/main_job_session.h"
#include "support/private_sound_server.h"

namespace tavrelon::testing {

/// What the test's recogniser understands.
inline const auto greeting = QStringLiteral("hello my dear friend");
inline const auto wish = QStringLiteral("tell me a long story");

/// Installs a recogniser of these two sentences as a user would.
void installRecogniser(const QString& applicationSupport);

/// A person who speaks, types and presses hotkeys, with the program on the desk.
class VoiceDesk {
 public:
    PrivateSoundServer sound{PrivateSoundServer::Microphone::HearsSpeakers};
    StandInService service;
    XTestKeyboard keyboard;

    void answer(const QString& content);

    /// Presses a hotkey of modifiers alone, and waits until the program records.
    void startSpeaking(std::initializer_list<place::Code> modifiers);
    void press(std::initializer_list<place::Code> modifiers);
};

}  // namespace tavrelon::testing
