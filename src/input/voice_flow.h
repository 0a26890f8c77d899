#pragma once

#include <QPropertyNotifier>
#include <optional>

#include "input/voice_transcript.h"

namespace tavrelon::input {

/// The two spoken inputs. Voice input writes the transcript into the field and treats it as a text request; dictation
/// only writes it. Both record in `listeningVoice` and end by their hotkey or by silence, which counts from when the
/// recogniser hears. Main thread.
class VoiceFlow {
 public:
    VoiceFlow(InputStateMachine& machine, const InputServices& services)
        : machine_(machine), services_(services), transcript_(machine, services) {}

    void setSpeechRecognizer(media::SpeechRecognizer& recognizer);
    void handleVoiceHotkey() { toggle(InputTrigger::voice); }
    void handleVoiceDictationHotkey() { toggle(InputTrigger::voiceDictation); }

    /// Drops the recording.
    void cancel();
    void stopSilenceTimer() { voiceSilenceTimer_.reset(); }

 private:
    void toggle(InputTrigger kind);
    void startVoiceInput();
    void startVoiceDictation();
    void startRecording(InputTrigger kind, const QString& logPrefix);
    void stop(InputTrigger kind);

    void follow(media::RecogniserState state);
    void handleTranscriptUpdate(const QString& text);
    void restartVoiceSilenceTimer(std::optional<InputTrigger> trigger);
    std::chrono::duration<double> silenceTimeout(std::optional<InputTrigger> trigger) const;
    void handleVoiceSilenceTimeout();

    async::Task<void> processVoiceInput(QUuid id);
    async::Task<void> processVoiceDictation(QUuid id);
    void log(const QString& line) { services_.platform.log.line(line); }

    InputStateMachine& machine_;
    InputServices services_;
    VoiceTranscript transcript_;
    media::SpeechRecognizer* speechRecognizer_ = nullptr;
    QPropertyNotifier transcriptSubscription_;
    QPropertyNotifier recogniserSubscription_;
    async::Timer voiceSilenceTimer_;
};

}  // namespace tavrelon::input
