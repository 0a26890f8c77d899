#include "desktop/audio/vosk_session.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "text/localized_error.h"

namespace tavrelon::desktop {

using platform::SpeechError;
using platform::SpeechResult;
using ResultHandler = platform::Speech::ResultHandler;

namespace {

constexpr std::size_t sampleRate = platform::AudioInput::sampleRate;

/// What the library gets at once: a tenth of a second, so that a cancellation need not wait for more.
constexpr std::size_t pieceSize = sampleRate / 10;

/// The sound that may wait for a recogniser that does not keep up. What comes beyond it is lost.
constexpr std::size_t longestBacklog = 60 * sampleRate;

SpeechError error(const char* description) {
    return {QString::fromLatin1(description)};
}

SpeechError unavailable(const char* description) {
    return {QString::fromLatin1(description), true};
}

}  // namespace

/// The library's recogniser with the text that it has given so far.
class VoskSession::Recognizer {
 public:
    Recognizer(const VoskFunctions& functions, VoskModelPtr model)
        : functions_(functions),
          model_(std::move(model)),
          recognizer_(functions.recognizerNew(model_.get(), static_cast<float>(sampleRate)), functions.recognizerFree) {
    }
    explicit operator bool() const { return static_cast<bool>(recognizer_); }

    /// The text after these samples.
    QString accept(std::span<const std::int16_t> samples) {
        const int outcome =
            functions_.acceptWaveform(recognizer_.get(), samples.data(), static_cast<int>(samples.size()));
        if (outcome < 0)
            throw text::LocalizedError(QStringLiteral("the Vosk library failed on the sound"));
        if (outcome == 0)
            return transcript_.with(voskText(functions_.partialResult(recognizer_.get()), "partial"));
        transcript_.add(voskText(functions_.result(recognizer_.get()), "text"));
        return transcript_.text();
    }
    QString finish() {
        transcript_.add(voskText(functions_.finalResult(recognizer_.get()), "text"));
        return transcript_.text();
    }

 private:
    const VoskFunctions& functions_;
    VoskModelPtr model_;
    std::unique_ptr<VoskRecognizer, void (*)(VoskRecognizer*)> recognizer_;
    VoskTranscript transcript_;
};

void VoskSession::append(std::span<const std::int16_t> samples) {
    {
        const std::lock_guard lock(mutex_);
        if (ended_ || cancelled_ || pending_.size() + samples.size() > longestBacklog)
            return;
        pending_.insert(pending_.end(), samples.begin(), samples.end());
    }
    changed_.notify_one();
}

void VoskSession::endAudio() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    changed_.notify_one();
}

void VoskSession::cancel() {
    {
        const std::lock_guard lock(mutex_);
        cancelled_ = true;
        pending_ = {};
    }
    changed_.notify_one();
}

bool VoskSession::isCancelled() const {
    const std::lock_guard lock(mutex_);
    return cancelled_;
}

/// All that has come in; empty at the end of the sound, absent when there is nothing to wait for.
std::optional<VoskSession::Samples> VoskSession::nextSamples() {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, soundLimit, [this] { return !pending_.empty() || ended_ || cancelled_; });
    if (cancelled_ || (pending_.empty() && !ended_))
        return std::nullopt;
    return std::exchange(pending_, {});
}

void VoskSession::run(const VoskLibrary& library, VoskModels& models, const QString& modelFolder,
                      const Listener& listener) {
    const auto& handler = listener.handler;
    if (isCancelled())
        return;
    try {
        auto model = models.model(library, modelFolder);
        if (!model)
            return handler(std::unexpected(unavailable("the model cannot be read")));
        Recognizer recognizer(library.functions(), std::move(model));
        if (!recognizer)
            return handler(std::unexpected(unavailable("the Vosk library makes no recogniser of the model")));
        if (isCancelled())
            return;
        listener.whenHearing();
        recognise(recognizer, handler);
    } catch (const std::exception& failure) {
        handler(std::unexpected(SpeechError{text::localizedDescription(failure)}));
    }
}

void VoskSession::recognise(Recognizer& recognizer, const ResultHandler& handler) {
    QString reported;
    for (;;) {
        const auto samples = nextSamples();
        if (!samples) {
            if (!isCancelled())
                handler(std::unexpected(error("no sound came")));
            return;
        }
        if (samples->empty())
            return handler(SpeechResult{recognizer.finish(), true});
        for (std::size_t start = 0; start < samples->size(); start += pieceSize) {
            const std::span piece(*samples);
            auto heard = recognizer.accept(piece.subspan(start, std::min(pieceSize, samples->size() - start)));
            if (isCancelled())
                return;
            if (heard != reported)
                handler(SpeechResult{reported = std::move(heard), false});
        }
    }
}

}  // namespace tavrelon::desktop
