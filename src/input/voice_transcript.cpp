// What becomes of a finished recording.
#include "async/waits.h"
#include "input/text_request_pipeline.h"
#include "input/voice_flow.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using Method = scenes::ReplacementStrategy::Method;

namespace {

/// How long a final transcript is waited for after the recording ended and the recogniser hears, and how often it is
/// looked for.
constexpr auto transcriptTimeout = 1200ms;
constexpr auto transcriptInterval = 150ms;
constexpr auto finalInterval = 30ms;  ///< where there is a text already, and only its last words may be missing

}  // namespace

async::Task<QString> VoiceFlow::currentVoiceTranscript() {
    // Deliveries that are queued already get in first.
    co_await async::ignoringCancellation(async::pause(services_.platform.mainLoop, 0ms));
    auto transcript = speechRecognizer_ ? speechRecognizer_->bindableCurrentTranscript().value() : QString();
    if (transcript.isEmpty())
        transcript = machine_.currentTranscript();
    co_return text::trimmed(transcript);
}

async::Task<QString> VoiceFlow::waitForVoiceTranscript(QUuid id) {
    auto transcript = co_await currentVoiceTranscript();
    const auto isPartial = [this] { return speechRecognizer_ && speechRecognizer_->awaitsFinal(); };
    const auto state = [this] {
        return speechRecognizer_ ? speechRecognizer_->bindableRecogniserState().value() : media::RecogniserState::Off;
    };
    const auto mayCome = [&] {
        return state() != media::RecogniserState::Unavailable && (transcript.isEmpty() || isPartial());
    };
    for (auto waited = 0ms; mayCome() && waited < transcriptTimeout;) {
        const auto interval = transcript.isEmpty() ? transcriptInterval : finalInterval;
        if (state() != media::RecogniserState::Loading)  // which the recogniser itself bounds
            waited += interval;
        co_await async::ignoringCancellation(async::pause(services_.platform.mainLoop, interval));
        if (!machine_.isCurrentTask(id))
            co_return QString();
        transcript = co_await currentVoiceTranscript();
    }
    if (transcript.isEmpty() && state() == media::RecogniserState::Unavailable)
        throw media::SpeechRecognizerError(media::SpeechRecognizerError::Code::recognizerNotAvailable);
    co_return transcript;
}

async::Task<void> VoiceFlow::insertTranscript(QString text, QUuid id) {
    if (!machine_.isCurrentTask(id))
        co_return;
    const auto selection = co_await services_.contextCapturer.selectedText();
    if (!machine_.isCurrentTask(id))
        co_return;
    const bool replaces = selection && !text::isBlank(*selection);
    output::ensureWritten(co_await services_.outputWriter.writeText(
        std::move(text), replaces ? Method::replaceSelection : Method::deleteChars, 0, 0));
}

async::Task<bool> VoiceFlow::tryInsertTranscript(QString text, QUuid id) {
    try {
        co_await insertTranscript(std::move(text), id);
        co_return true;
    } catch (const async::CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        log(QStringLiteral("[StateMachine] Failed to insert voice transcript: ") + text::localizedDescription(error));
    }
    co_return false;
}

async::Task<void> VoiceFlow::processVoiceInput(QUuid id) {
    const auto transcript = co_await waitForVoiceTranscript(id);
    if (transcript.isEmpty()) {
        log(QStringLiteral("[StateMachine] No voice transcript to process"));
        machine_.resetIfOwned(id);
        co_return;
    }
    std::optional<AccessibilityTextSnapshot> snapshot;
    auto inserted = TranscriptInserted::No;
    const auto selection = co_await services_.contextCapturer.selectedText();
    if (!machine_.isCurrentTask(id))
        co_return;
    // What is selected is what the request is about; it stays until the answer takes its place.
    if (!(selection && !text::isBlank(*selection)) && co_await tryInsertTranscript(transcript, id)) {
        if (!machine_.isCurrentTask(id))
            co_return;
        snapshot = services_.contextCapturer.fetchFocusedTextSnapshot();
        inserted = TranscriptInserted::Yes;
    }
    co_await machine_.textRequests().processTextRequest(transcript, std::move(snapshot), id, inserted);
}

async::Task<void> VoiceFlow::processVoiceDictation(QUuid id) {
    const auto transcript = co_await waitForVoiceTranscript(id);
    if (transcript.isEmpty()) {
        log(QStringLiteral("[StateMachine] No dictation transcript to insert"));
        machine_.resetIfOwned(id);
        co_return;
    }
    co_await insertVoiceDictation(transcript, id);
}

async::Task<void> VoiceFlow::insertVoiceDictation(QString transcript, QUuid id) {
    if (!machine_.isCurrentTask(id))
        co_return;
    co_await insertTranscript(std::move(transcript), id);
    if (machine_.isCurrentTask(id))
        co_await machine_.complete(id, 1s);
}

}  // namespace tavrelon::input
