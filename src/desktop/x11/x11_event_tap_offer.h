#pragma once

#include <atomic>
#include <optional>

#include "platform/event_tap.h"

namespace tavrelon::desktop {

/// One held key on its way from the tap's thread, which waits, to the main thread, which decides. Whoever is late
/// finds the offer closed: either the main thread claims it in time, or the key passes and nobody acts on it.
class KeyOffer {
 public:
    /// Main thread, before anything is done about the key. False once the offer was withdrawn.
    bool claim();

    /// Main thread, after `claim`. Counts only if it comes before `withdraw`.
    void answer(platform::TapVerdict verdict);

    /// Main thread, in every case, once it is done with the offer.
    void finish() { finished_ = true; }

    /// The answer, if there is one. Any thread.
    std::optional<platform::TapVerdict> verdict() const;

    /// Tap thread: ends the wait, with the answer if it came in the last moment. The key passes without one.
    std::optional<platform::TapVerdict> withdraw();

    /// Whether the main thread came to the offer at all, late or not.
    bool finished() const { return finished_; }

 private:
    enum class State { Offered, Claimed, Passed, Dropped, Withdrawn };

    static std::optional<platform::TapVerdict> verdictOf(State state);

    std::atomic<State> state_ = State::Offered;
    std::atomic<bool> finished_ = false;
};

}  // namespace tavrelon::desktop
