#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "desktop/audio/vosk_models.h"
#include "desktop/audio/vosk_transcript.h"
#include "platform/audio_input.h"
#include "platform/speech.h"

namespace tavrelon::desktop {

/// One recognition: sound goes in from any thread, and `run`, the recogniser's thread, makes text of it. The thread
/// ends soon after the sound has ended, after a cancellation, and when no sound comes for `soundLimit`.
class VoskSession : public platform::SpeechRequest {
 public:
    static constexpr std::chrono::seconds soundLimit{10};

    void append(std::span<const std::int16_t> samples) override;
    void endAudio() override;
    void cancel();

    struct Listener {
        platform::Speech::HearingHandler whenHearing;
        platform::Speech::ResultHandler handler;
    };
    void run(const VoskLibrary& library, VoskModels& models, const QString& modelFolder, const Listener& listener);

 private:
    using Samples = std::vector<std::int16_t>;
    class Recognizer;

    void recognise(Recognizer& recognizer, const platform::Speech::ResultHandler& handler);
    std::optional<Samples> nextSamples();
    bool isCancelled() const;

    mutable std::mutex mutex_;  // guards all fields
    std::condition_variable changed_;
    Samples pending_;
    bool ended_ = false;
    bool cancelled_ = false;
};

}  // namespace tavrelon::desktop
