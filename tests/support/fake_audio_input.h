#pragma once

#include <utility>
#include <vector>

#include "platform/audio_input.h"

namespace tavrelon::testing {

/// A microphone that hears what a test says into it. Tests change the members at any time.
class FakeAudioInput : public platform::AudioInput {
 public:
    platform::AuthorizationStatus status = platform::AuthorizationStatus::Authorized;
    bool plugged = true;
    int channels = 1;
    std::optional<platform::AudioInputError> startError;
    bool running = false;
    int accessRequests = 0;
    std::shared_ptr<platform::AudioTap> tap;

    /// A buffer of sound, for as long as it is recorded.
    void sound(std::size_t samples) {
        if (running && tap)
            tap->buffer(std::vector<std::int16_t>(samples, 1000));
    }

    void unplug() {
        plugged = false;
        if (std::exchange(running, false) && tap)
            tap->ended();
    }

    platform::AuthorizationStatus authorizationStatus() override { return status; }
    void requestAccess() override { ++accessRequests; }
    bool hasDefaultDevice() override { return plugged; }
    int inputChannelCount() override { return channels; }
    void installTap(int, std::shared_ptr<platform::AudioTap> newTap) override { tap = std::move(newTap); }
    void removeTap() override { tap.reset(); }
    std::expected<void, platform::AudioInputError> start() override {
        if (startError || !plugged)
            return std::unexpected(startError.value_or(platform::AudioInputError{QStringLiteral("It is gone.")}));
        running = true;
        return {};
    }
    void stop() override { running = false; }
};

}  // namespace tavrelon::testing
