#include "media/speech_recognizer.h"

#include "async/main_loop.h"
#include "media/speech_locale.h"

namespace tavrelon::media {

using platform::AuthorizationStatus;
using Code = SpeechRecognizerError::Code;

namespace {

constexpr int tapBufferSize = 1024;

}  // namespace

text::LocalizedText SpeechRecognizerError::textOf(Code code) {
    switch (code) {
        case Code::recognizerNotAvailable:
            return {QStringLiteral("Speech recognition is not available on this device"),
                    QStringLiteral("此设备上语音识别不可用")};
        case Code::speechNotAuthorized:
            return {QStringLiteral("Speech recognition permission is required. Please allow it in System Settings."),
                    QStringLiteral("需要语音识别权限，请在系统设置中允许。")};
        case Code::microphoneNotAuthorized:
            return {QStringLiteral("Microphone access is required. Please allow it in System Settings."),
                    QStringLiteral("需要麦克风权限，请在系统设置中允许。")};
        case Code::microphoneUnavailable:
            return {QStringLiteral("No microphone input device is available."), QStringLiteral("没有可用的麦克风。")};
        case Code::requestCreationFailed:
            return {QStringLiteral("Failed to create speech recognition request"), QStringLiteral("无法开始语音识别")};
    }
    return {};
}

/// Hands the sound of one recording to its request.
class SpeechRecognizer::Tap : public platform::AudioTap {
 public:
    Tap(std::shared_ptr<platform::SpeechRequest> request, std::function<void()> whenEnded)
        : request_(std::move(request)), whenEnded_(std::move(whenEnded)) {}

    void buffer(std::span<const std::int16_t> samples) override { request_->append(samples); }
    void ended() override { whenEnded_(); }

 private:
    std::shared_ptr<platform::SpeechRequest> request_;
    std::function<void()> whenEnded_;
};

SpeechRecognizer::~SpeechRecognizer() {
    platform_.audioInput.stop();
    platform_.audioInput.removeTap();
}

void SpeechRecognizer::startRecording() {
    const auto installed = platform_.speech.locales();
    const auto locale = chooseLocale ? chooseLocale(installed) : speechLocale(installed, {}, {});
    if (!platform_.speech.isAvailable(locale))
        throw SpeechRecognizerError(Code::recognizerNotAvailable);
    requireSpeechAuthorization();
    requireMicrophoneAuthorization();
    if (!platform_.audioInput.hasDefaultDevice())
        throw SpeechRecognizerError(Code::microphoneUnavailable);
    dropTask();
    recognitionRequest_ = platform_.speech.createRequest(
        {.locale = locale,
         .reportsPartialResults = true,
         .taskHint = platform::SpeechTaskHint::Dictation,
         .requiresOnDeviceRecognition = platform_.speech.supportsOnDeviceRecognition(locale)});
    if (!recognitionRequest_)
        throw SpeechRecognizerError(Code::requestCreationFailed);
    if (platform_.audioInput.inputChannelCount() == 0)
        throw SpeechRecognizerError(Code::microphoneUnavailable);
    startTask();
    installTap();
    if (const auto started = platform_.audioInput.start(); !started)
        throw text::LocalizedError(started.error().description);
    recogniserState_ = RecogniserState::Loading;
    loading_ = platform_.mainLoop.after(loadingLimit, [this] { endRecognition(RecogniserState::Unavailable); });
    schedule([this] {
        isRecording_ = true;
        currentTranscript_ = QString();
        if (const auto told = delegate.lock())
            told->didStartRecording(*this);
    });
}

void SpeechRecognizer::requireSpeechAuthorization() {
    const auto status = platform_.speech.authorizationStatus();
    isAuthorized_ = status == AuthorizationStatus::Authorized;
    if (isAuthorized_)
        return;
    if (status == AuthorizationStatus::NotDetermined)
        platform_.speech.requestAuthorization(lifetime_.guard(
            [this](AuthorizationStatus answer) { isAuthorized_ = answer == AuthorizationStatus::Authorized; }));
    throw SpeechRecognizerError(Code::speechNotAuthorized);
}

void SpeechRecognizer::requireMicrophoneAuthorization() {
    const auto status = platform_.audioInput.authorizationStatus();
    if (status == AuthorizationStatus::NotDetermined)
        platform_.audioInput.requestAccess();
    if (status != AuthorizationStatus::Authorized)
        throw SpeechRecognizerError(Code::microphoneNotAuthorized);
}

void SpeechRecognizer::startTask() {
    const auto hearHere = lifetime_.guard([this, recording = recording_ + 1] { handleHearing(recording); });
    const auto handleHere =
        lifetime_.guard([this, recording = ++recording_](const Outcome& outcome) { handle(recording, outcome); });
    recognitionTask_ = platform_.speech.startTask(
        recognitionRequest_, [hearHere, loop = &platform_.mainLoop] { loop->post(hearHere); },
        [handleHere, loop = &platform_.mainLoop](Outcome outcome) {
            loop->post([handle = handleHere, outcome = std::move(outcome)]() mutable { handle(outcome); });
        });
}

void SpeechRecognizer::installTap() {
    const auto endHere = lifetime_.guard([this, recording = recording_] { handleInputEnd(recording); });
    platform_.audioInput.installTap(
        tapBufferSize,
        std::make_shared<Tap>(recognitionRequest_, [endHere, loop = &platform_.mainLoop] { loop->post(endHere); }));
}

void SpeechRecognizer::handle(quint64 recording, const Outcome& outcome) {
    if (recording != recording_ || !recognitionTask_)
        return;  // of a task that was cancelled meanwhile
    using Finality = SpeechRecognizerDelegate::Finality;
    const bool isFinal = outcome && outcome->isFinal;
    if (outcome) {
        currentTranscript_ = outcome->formattedString;
        if (const auto told = delegate.lock())
            told->didUpdateTranscript(*this, outcome->formattedString, isFinal ? Finality::Final : Finality::Partial);
        if (!isFinal)
            return;
    }
    endRecognition(!outcome && outcome.error().isUnavailable ? RecogniserState::Unavailable : RecogniserState::Off);
}

void SpeechRecognizer::endRecognition(RecogniserState state) {
    platform_.audioInput.stop();
    platform_.audioInput.removeTap();
    dropTask();
    isRecording_ = false;
    recogniserState_ = state;
    if (const auto told = delegate.lock())
        told->didStopRecording(*this);
}

void SpeechRecognizer::handleHearing(quint64 recording) {
    if (recording != recording_ || !recognitionTask_)
        return;
    loading_.reset();
    recogniserState_ = RecogniserState::Hearing;
}

/// A microphone that is gone must not cost the words that were spoken into it.
void SpeechRecognizer::handleInputEnd(quint64 recording) {
    if (recording == recording_ && recognitionTask_)
        stopRecording();
}

void SpeechRecognizer::stopRecording() {
    platform_.audioInput.stop();
    if (recognitionRequest_)
        recognitionRequest_->endAudio();
    if (recognitionTask_)
        recognitionTask_->finish();
    schedule([this] { isRecording_ = false; });
}

void SpeechRecognizer::cancelRecording() {
    platform_.audioInput.stop();
    dropTask();
    schedule([this] {
        isRecording_ = false;
        currentTranscript_ = QString();
    });
}

void SpeechRecognizer::dropTask() {
    if (recognitionTask_)
        recognitionTask_->cancel();
    recognitionTask_.reset();
    recognitionRequest_.reset();
    loading_.reset();
    recogniserState_ = RecogniserState::Off;
}

template <typename Block>
void SpeechRecognizer::schedule(Block block) {
    platform_.mainLoop.post(lifetime_.guard(std::move(block)));
}

}  // namespace tavrelon::media
