#include "input/voice_flow.h"

#include "input/text_request_pipeline.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using Case = InputState::Case;

void VoiceFlow::setSpeechRecognizer(media::SpeechRecognizer& recognizer) {
    speechRecognizer_ = &recognizer;
    transcript_.setSpeechRecognizer(recognizer);
    transcriptSubscription_ = recognizer.bindableCurrentTranscript().addNotifier([this] {
        machine_.schedule([this, transcript = speechRecognizer_->bindableCurrentTranscript().value()] {
            if (machine_.currentState() != Case::listeningVoice)
                return;
            machine_.setCurrentTranscript(transcript);
            handleTranscriptUpdate(transcript);
        });
    });
    recogniserSubscription_ = recognizer.bindableRecogniserState().addNotifier([this] {
        machine_.schedule([this, state = speechRecognizer_->bindableRecogniserState().value()] { follow(state); });
    });
}

void VoiceFlow::toggle(InputTrigger kind) {
    if (machine_.takeStage())
        kind == InputTrigger::voice ? startVoiceInput() : startVoiceDictation();
    else
        stop(kind);
}

void VoiceFlow::startVoiceInput() {
    if (!machine_.ensureAIEnabled() || !machine_.ensureNoPasswordField())
        return;
    if (speechRecognizer_)
        machine_.initialTextSnapshot = services_.contextCapturer.fetchFocusedTextSnapshot();
    startRecording(InputTrigger::voice, QStringLiteral("[StateMachine] Failed to start voice recording: "));
}

void VoiceFlow::startVoiceDictation() {
    if (!machine_.ensureNoPasswordField())
        return;
    if (speechRecognizer_)
        machine_.initialTextSnapshot.reset();
    startRecording(InputTrigger::voiceDictation, QStringLiteral("[StateMachine] Failed to start voice dictation: "));
}

void VoiceFlow::startRecording(InputTrigger kind, const QString& logPrefix) {
    if (!speechRecognizer_) {
        log(QStringLiteral("[StateMachine] SpeechRecognizer not available"));
        machine_.failInput(
            {QStringLiteral("Speech recognition is not available."), QStringLiteral("语音识别不可用。")});
        return;
    }
    services_.outputWriter.aim();
    machine_.schedule([this, kind] { machine_.enterInputState(Case::listeningVoice, kind); });
    try {
        speechRecognizer_->startRecording();
    } catch (const std::exception& error) {
        const auto description = text::descriptionOf(error);
        log(logPrefix + description.english);
        machine_.setStateLater(InputState::error(description));
    }
}

void VoiceFlow::stop(InputTrigger kind) {
    if (machine_.currentState() != Case::listeningVoice || machine_.activeTrigger() != kind ||
        !machine_.ensureNoPasswordField())
        return;
    stopSilenceTimer();
    if (speechRecognizer_)
        speechRecognizer_->stopRecording();
    machine_.setStateLater(Case::processing);
    if (kind == InputTrigger::voice)
        machine_.beginProcessingTask(TextRequestPipeline::failureLog,
                                     [this](QUuid id) { return processVoiceInput(id); });
    else
        machine_.beginProcessingTask(QStringLiteral("Error processing voice dictation: "),
                                     [this](QUuid id) { return processVoiceDictation(id); });
}

void VoiceFlow::cancel() {
    stopSilenceTimer();
    if (speechRecognizer_)
        speechRecognizer_->cancelRecording();
}

void VoiceFlow::follow(media::RecogniserState state) {
    using enum media::RecogniserState;
    machine_.setRecogniserLoading(state == Loading);
    if (machine_.currentState() != Case::listeningVoice)
        return;
    if (state == Hearing)
        restartVoiceSilenceTimer(machine_.activeTrigger());
    if (state == Unavailable) {
        const media::SpeechRecognizerError error(media::SpeechRecognizerError::Code::recognizerNotAvailable);
        log(QStringLiteral("[StateMachine] The recording ended: ") + error.localizedDescription());
        machine_.setStateLater(InputState::error(error.description()));
    }
}

void VoiceFlow::handleTranscriptUpdate(const QString& text) {
    if (!text::isBlank(text))
        restartVoiceSilenceTimer(machine_.activeTrigger());
}

void VoiceFlow::restartVoiceSilenceTimer(std::optional<InputTrigger> trigger) {
    stopSilenceTimer();
    const auto timeout = silenceTimeout(trigger);
    if (timeout <= timeout.zero())
        return;
    // A day is longer than anyone is silent, and far below what a timer can hold.
    const auto bounded = std::min(timeout, std::chrono::duration<double>(std::chrono::hours(24)));
    voiceSilenceTimer_ = services_.platform.mainLoop.after(
        std::chrono::duration_cast<std::chrono::nanoseconds>(bounded), [this] { handleVoiceSilenceTimeout(); });
}

std::chrono::duration<double> VoiceFlow::silenceTimeout(std::optional<InputTrigger> trigger) const {
    const auto& settings = services_.storageManager.settings();
    return std::chrono::duration<double>(trigger == InputTrigger::voiceDictation
                                             ? settings.voiceDictationSilenceTimeoutSeconds
                                             : settings.voiceInputSilenceTimeoutSeconds);
}

void VoiceFlow::handleVoiceSilenceTimeout() {
    if (const auto trigger = machine_.activeTrigger())
        stop(*trigger);
}

async::Task<void> VoiceFlow::processVoiceInput(QUuid id) {
    const auto transcript = co_await transcript_.wait(id);
    if (transcript.isEmpty()) {
        log(QStringLiteral("[StateMachine] No voice transcript to process"));
        machine_.resetIfOwned(id);
        co_return;
    }
    std::optional<capture::AccessibilityTextSnapshot> snapshot;
    auto inserted = TranscriptInserted::No;
    const auto selection = co_await services_.contextCapturer.selectedText();
    machine_.requireCurrent(id);
    // What is selected is what the request is about; it stays until the answer takes its place.
    if (!(selection && !text::isBlank(*selection)) && co_await transcript_.tryInsert(transcript, id)) {
        machine_.requireCurrent(id);
        snapshot = services_.contextCapturer.fetchFocusedTextSnapshot();
        inserted = TranscriptInserted::Yes;
    }
    co_await machine_.textRequests().processTextRequest(transcript, std::move(snapshot), id, inserted);
}

async::Task<void> VoiceFlow::processVoiceDictation(QUuid id) {
    const auto transcript = co_await transcript_.wait(id);
    if (transcript.isEmpty()) {
        log(QStringLiteral("[StateMachine] No dictation transcript to insert"));
        machine_.resetIfOwned(id);
        co_return;
    }
    co_await transcript_.insert(transcript, id);
    machine_.requireCurrent(id);
    co_await machine_.complete(id, 1s);
}

}  // namespace tavrelon::input
