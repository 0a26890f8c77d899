#pragma once

#include "input/input_state_machine.h"

namespace tavrelon::input {

/// What was said in a recording that has ended, and its way into the field. Main thread. Throws `CancellationError`
/// when another input took over meanwhile.
class VoiceTranscript {
 public:
    VoiceTranscript(InputStateMachine& machine, const InputServices& services)
        : machine_(machine), services_(services) {}

    void setSpeechRecognizer(media::SpeechRecognizer& recognizer) { speechRecognizer_ = &recognizer; }

    /// The transcript, trimmed, as soon as it is final, or what there is of it after a while. Throws
    /// `SpeechRecognizerError` where nothing was heard because the recogniser went away.
    async::Task<QString> wait(QUuid id);

    /// Writes the text before the caret, or over the selection. Throws what the writer does.
    async::Task<void> insert(QString text, QUuid id);

    /// The same; a failure is logged, and false.
    async::Task<bool> tryInsert(QString text, QUuid id);

 private:
    async::Task<QString> current();

    InputStateMachine& machine_;
    InputServices services_;
    media::SpeechRecognizer* speechRecognizer_ = nullptr;
};

}  // namespace tavrelon::input
