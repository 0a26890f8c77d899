#pragma once

#include <QString>
#include <condition_variable>
#include <expected>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/audio_input.h"
#include "platform/log.h"

struct pa_context;
struct pa_mainloop;
struct pa_stream;

namespace tavrelon::desktop {

/// What a sound server says of the microphone.
struct PulseAnswer {
    enum class Verdict { NoServer, Refused, NoMicrophone, Microphone };

    Verdict verdict = Verdict::NoServer;
    int channels = 0;
    QString reason;  ///< for the log; empty for a microphone
};

/// How an error of the server, by its number, is to be taken.
PulseAnswer::Verdict verdictOnError(int error);

/// One conversation with the sound server: asks for the default source, and records it once told to. A source that only
/// plays back what the speakers get is no microphone.
///
/// `run` is the conversation's thread; all else is for the main thread and returns at once, except `waitForAnswer`. A
/// conversation that is neither told to record nor to end ends by itself.
class PulseConversation {
 public:
    /// `log` outlives the thread. It hears in one line why there is no microphone.
    explicit PulseConversation(platform::Log& log) : log_(log) {}

    void run();

    /// Absent when the answer has not come within `limit`.
    std::optional<PulseAnswer> waitForAnswer(std::chrono::milliseconds limit);

    /// False when the conversation has already ended.
    bool record(int bufferSize, std::shared_ptr<platform::AudioTap> tap);

    /// No `ended` is told any more.
    void stop();

    /// Whether it records or still may.
    bool isLive() const;

 private:
    using Clock = std::chrono::steady_clock;

    struct Wish {
        int bufferSize = 0;
        std::shared_ptr<platform::AudioTap> tap;
    };

    PulseAnswer ask();
    bool connect(PulseAnswer& failure);
    void answer(PulseAnswer answer);
    std::optional<Wish> waitForWish();
    bool openStream(const Wish& wish);
    void hear();
    void hand(pa_stream* stream);
    void end();
    bool turn(Clock::time_point until);
    bool isStopped() const;
    bool isContextGood() const;

    platform::Log& log_;
    mutable std::mutex mutex_;  // guards the next six
    std::condition_variable answered_;
    std::optional<PulseAnswer> answer_;
    std::optional<Wish> wish_;
    bool stopped_ = false;
    bool over_ = false;
    pa_mainloop* loop_ = nullptr;  // for waking it; all else with it is the thread's

    // The thread's own.
    pa_context* context_ = nullptr;
    pa_stream* stream_ = nullptr;
    QByteArray sourceName_;
    platform::AudioTap* tap_ = nullptr;
    Clock::time_point lastSound_;
};

}  // namespace tavrelon::desktop
