#pragma once

#include <QProperty>
#include <QString>
#include <memory>

#include "async/lifetime.h"
#include "media/speech_recognizer_error.h"
#include "platform/platform.h"

namespace tavrelon::media {

class SpeechRecognizer;

/// Is told of a recording. Main thread.
class SpeechRecognizerDelegate {
 public:
    enum class Finality { Partial, Final };

    virtual ~SpeechRecognizerDelegate() = default;
    virtual void didUpdateTranscript(SpeechRecognizer& recognizer, const QString& text, Finality finality) = 0;
    virtual void didStartRecording(SpeechRecognizer& recognizer) = 0;

    /// The recognition ended, by its final result or by an error.
    virtual void didStopRecording(SpeechRecognizer& recognizer) = 0;
};

/// Turns what the microphone hears into Chinese text while it records. Main thread; what the ports tell on their own
/// threads arrives here in later turns, in order.
class SpeechRecognizer {
 public:
    explicit SpeechRecognizer(platform::Platform& platform) : platform_(platform) {}
    SpeechRecognizer(const SpeechRecognizer&) = delete;
    SpeechRecognizer& operator=(const SpeechRecognizer&) = delete;
    ~SpeechRecognizer();

    /// Throws `SpeechRecognizerError`, or a `text::LocalizedError` of the microphone's own. Where the user has yet to
    /// be asked for a right, it asks and throws at once: the next try finds the answer.
    void startRecording();

    /// Ends the recording and lets the recogniser finish: a final transcript still arrives.
    void stopRecording();

    /// Ends the recording and drops what was heard.
    void cancelRecording();

    /// Whether a better text of the last recording may still come.
    bool awaitsFinal() const { return recognitionTask_ != nullptr; }

    QBindable<bool> bindableIsRecording() { return &isRecording_; }
    QBindable<QString> bindableCurrentTranscript() { return &currentTranscript_; }  ///< the best text so far
    QBindable<bool> bindableIsAuthorized() { return &isAuthorized_; }

    std::weak_ptr<SpeechRecognizerDelegate> delegate;

 private:
    class Tap;
    using Outcome = std::expected<platform::SpeechResult, platform::SpeechError>;

    void requireSpeechAuthorization();
    void requireMicrophoneAuthorization();
    void startTask();
    void installTap();
    void handle(quint64 recording, const Outcome& outcome);
    void handleInputEnd(quint64 recording);
    void dropTask();
    template <typename Block>
    void schedule(Block block);

    platform::Platform& platform_;
    QProperty<bool> isRecording_{false};
    QProperty<QString> currentTranscript_;
    QProperty<bool> isAuthorized_{false};
    std::shared_ptr<platform::SpeechRequest> recognitionRequest_;
    std::unique_ptr<platform::SpeechTask> recognitionTask_;
    quint64 recording_ = 0;  ///< counts the tasks, so that word of an earlier one is told apart
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::media
