#include "desktop/audio/pulse_audio_input.h"

#include <utility>

namespace tavrelon::desktop {

using platform::AudioInputError;
using platform::AuthorizationStatus;
using Verdict = PulseAnswer::Verdict;

PulseAudioInput::~PulseAudioInput() {
    stop();
}

const PulseAnswer& PulseAudioInput::ask() {
    if (isAnswerOfThisTurn_ || (asked_ && asked_->isLive()))
        return answer_;
    isAnswerOfThisTurn_ = true;
    loop_.post(lifetime_.guard([this] { isAnswerOfThisTurn_ = false; }));
    asked_ = std::make_shared<PulseConversation>(log_);
    threads_.start("audio input", [conversation = asked_] { conversation->run(); });
    constexpr int atLeastOneChannel = 1;
    answer_ = asked_->waitForAnswer(limit_).value_or(PulseAnswer{Verdict::Microphone, atLeastOneChannel, {}});
    return answer_;
}

AuthorizationStatus PulseAudioInput::authorizationStatus() {
    return ask().verdict == Verdict::Refused ? AuthorizationStatus::Denied : AuthorizationStatus::Authorized;
}

bool PulseAudioInput::hasDefaultDevice() {
    return ask().verdict == Verdict::Microphone;
}

int PulseAudioInput::inputChannelCount() {
    return ask().channels;
}

void PulseAudioInput::installTap(int bufferSize, std::shared_ptr<platform::AudioTap> tap) {
    bufferSize_ = bufferSize;
    tap_ = std::move(tap);
}

void PulseAudioInput::removeTap() {
    tap_.reset();
}

std::expected<void, AudioInputError> PulseAudioInput::start() {
    if (recording_)
        std::exchange(recording_, nullptr)->stop();
    if (!tap_ || ask().verdict != Verdict::Microphone)
        return std::unexpected(AudioInputError{QStringLiteral("The microphone cannot be recorded.")});
    isAnswerOfThisTurn_ = false;  // a conversation records once
    recording_ = std::exchange(asked_, nullptr);
    if (!recording_ || !recording_->record(bufferSize_, tap_))
        return std::unexpected(AudioInputError{QStringLiteral("The microphone is gone.")});
    return {};
}

void PulseAudioInput::stop() {
    for (auto* conversation : {&asked_, &recording_})
        if (*conversation)
            std::exchange(*conversation, nullptr)->stop();
    isAnswerOfThisTurn_ = false;
}

}  // namespace tavrelon::desktop
