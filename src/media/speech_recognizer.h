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

/// How far the recogniser of a recording is. What is said while it loads is not lost.
enum class RecogniserState { Off, Loading, Hearing, Unavailable };

/// Turns what the microphone hears into text while it records. Main thread; what the ports tell on their own
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
    /// `Unavailable` where a recording has ended because its recogniser never began to hear.
    QBindable<RecogniserState> bindableRecogniserState() { return &recogniserState_; }
    QBindable<bool> bindableIsAuthorized() { return &isAuthorized_; }

    std::weak_ptr<SpeechRecognizerDelegate> delegate;

    /// Says which of the installed locales the next recording is in; unset, it is as `speechLocale` has it for a user
    /// who has chosen nothing.
    std::function<QString(const QStringList& installed)> chooseLocale;

    /// How long a recogniser may load: sound that has waited for longer is not kept by it either.
    static constexpr std::chrono::minutes loadingLimit{1};

 private:
    class Tap;
    using Outcome = std::expected<platform::SpeechResult, platform::SpeechError>;

    void requireSpeechAuthorization();
    void requireMicrophoneAuthorization();
    void startTask();
    void installTap();
    void handle(quint64 recording, const Outcome& outcome);
    void handleHearing(quint64 recording);
    void handleInputEnd(quint64 recording);
    void endRecognition(RecogniserState state);
    void dropTask();
    template <typename Block>
    void schedule(Block block);

    platform::Platform& platform_;
    QProperty<bool> isRecording_{false};
    QProperty<QString> currentTranscript_;
    QProperty<bool> isAuthorized_{false};
    QProperty<RecogniserState> recogniserState_{RecogniserState::Off};
    async::Timer loading_;
    std::shared_ptr<platform::SpeechRequest> recognitionRequest_;
    std::unique_ptr<platform::SpeechTask> recognitionTask_;
    quint64 recording_ = 0;  ///< counts the tasks, so that word of an earlier one is told apart
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::media
