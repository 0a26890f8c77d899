#pragma once

#include <memory>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/audio/pulse_conversation.h"
#include "desktop/audio/worker_threads.h"
#include "platform/audio_input.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// The default source of a PulseAudio server, or of PipeWire by the same protocol.
///
/// Each recording is a conversation of its own with the server, on a thread of its own: it begins with the first
/// question and ends with `stop`, so that nothing runs while nothing is recorded. The main thread waits for the answers
/// to the questions alone.
class PulseAudioInput : public platform::AudioInput {
 public:
    explicit PulseAudioInput(async::MainLoop& loop, platform::Log& log, std::chrono::milliseconds limit = questionLimit)
        : loop_(loop), log_(log), limit_(limit) {}
    ~PulseAudioInput() override;

    platform::AuthorizationStatus authorizationStatus() override;
    void requestAccess() override {}  // no desktop asks on behalf of this server
    bool hasDefaultDevice() override;
    int inputChannelCount() override;
    void installTap(int bufferSize, std::shared_ptr<platform::AudioTap> tap) override;
    void removeTap() override;
    std::expected<void, platform::AudioInputError> start() override;
    void stop() override;

 private:
    const PulseAnswer& ask();

    async::MainLoop& loop_;
    platform::Log& log_;
    std::chrono::milliseconds limit_;
    int bufferSize_ = 1024;
    std::shared_ptr<platform::AudioTap> tap_;
    std::shared_ptr<PulseConversation> asked_;  ///< has answered, and may be told to record
    std::shared_ptr<PulseConversation> recording_;
    PulseAnswer answer_;  ///< of `asked_`, or why there is none
    bool isAnswerOfThisTurn_ = false;
    WorkerThreads threads_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
