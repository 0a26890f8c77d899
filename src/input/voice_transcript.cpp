#include "input/voice_transcript.h"

#include "async/waits.h"

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

async::Task<QString> VoiceTranscript::current() {
    // Deliveries that are queued already get in first.
    co_await async::ignoringCancellation(async::pause(services_.platform.mainLoop, 0ms));
    auto transcript = speechRecognizer_ ? speechRecognizer_->bindableCurrentTranscript().value() : QString();
    if (transcript.isEmpty())
        transcript = machine_.currentTranscript();
    co_return text::trimmed(transcript);
}

async::Task<QString> VoiceTranscript::wait(QUuid id) {
    auto transcript = co_await current();
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
        machine_.requireCurrent(id);
        transcript = co_await current();
    }
    if (transcript.isEmpty() && state() == media::RecogniserState::Unavailable)
        throw media::SpeechRecognizerError(media::SpeechRecognizerError::Code::recognizerNotAvailable);
    co_return transcript;
}

async::Task<void> VoiceTranscript::insert(QString text, QUuid id) {
    machine_.requireCurrent(id);
    const auto selection = co_await services_.contextCapturer.selectedText();
    machine_.requireCurrent(id);
    const bool replaces = selection && !text::isBlank(*selection);
    output::ensureWritten(co_await services_.outputWriter.writeText(
        std::move(text), replaces ? Method::replaceSelection : Method::deleteChars, 0, 0));
}

async::Task<bool> VoiceTranscript::tryInsert(QString text, QUuid id) {
    try {
        co_await insert(std::move(text), id);
        co_return true;
    } catch (const async::CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        services_.platform.log.line(QStringLiteral("[StateMachine] Failed to insert voice transcript: ") +
                                    text::localizedDescription(error));
    }
    co_return false;
}

}  // namespace tavrelon::input
