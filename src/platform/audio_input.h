#pragma once

#include <QString>
#include <chrono>
#include <cstdint>
#include <expected>
#include <memory>
#include <span>

#include "platform/authorization_status.h"

namespace tavrelon::platform {

struct AudioInputError {
    QString description;  ///< for the user
};

/// Gets what a microphone hears. Called on the thread of the audio; both operations must return at once.
class AudioTap {
 public:
    virtual ~AudioTap() = default;

    /// The next samples, 16 kHz, one channel; they are valid during the call only.
    virtual void buffer(std::span<const std::int16_t> samples) = 0;

    /// The input ended by itself: it was unplugged, or what serves it is gone or silent. No buffer follows.
    virtual void ended() = 0;
};

/// The user's microphone. Main thread, except for what a tap gets.
///
/// The questions are answered as things stand at the moment and cost at most `questionLimit` together within one turn.
/// What has not been answered by then counts as fine: a recording may begin, and ends by itself when it turns out that
/// there is no microphone. The other operations return at once.
class AudioInput {
 public:
    static constexpr int sampleRate = 16000;
    static constexpr std::chrono::milliseconds questionLimit{50};

    virtual ~AudioInput() = default;

    virtual AuthorizationStatus authorizationStatus() = 0;

    /// Asks the user where the status is not determined. The answer shows in the status, later.
    virtual void requestAccess() = 0;

    virtual bool hasDefaultDevice() = 0;

    /// Of the default device; 0 when it cannot be recorded.
    virtual int inputChannelCount() = 0;

    /// Sets who hears, in place of an earlier tap, in buffers of about `bufferSize` samples.
    virtual void installTap(int bufferSize, std::shared_ptr<AudioTap> tap) = 0;
    virtual void removeTap() = 0;

    /// Begins to record for the tap; a recording that runs ends first, as by `stop`. What fails later is told by
    /// `AudioTap::ended`.
    virtual std::expected<void, AudioInputError> start() = 0;

    /// Ends the recording. A buffer that is under way may still arrive, but no `ended`.
    virtual void stop() = 0;
};

}  // namespace tavrelon::platform
