#include "desktop/x11/x11_event_tap_offer.h"

namespace tavrelon::desktop {

using platform::TapVerdict;

bool KeyOffer::claim() {
    auto expected = State::Offered;
    return state_.compare_exchange_strong(expected, State::Claimed);
}

void KeyOffer::answer(TapVerdict verdict) {
    auto expected = State::Claimed;
    state_.compare_exchange_strong(expected, verdict == TapVerdict::Drop ? State::Dropped : State::Passed);
}

std::optional<TapVerdict> KeyOffer::verdict() const {
    return verdictOf(state_);
}

std::optional<TapVerdict> KeyOffer::withdraw() {
    return verdictOf(state_.exchange(State::Withdrawn));
}

std::optional<TapVerdict> KeyOffer::verdictOf(State state) {
    switch (state) {
        case State::Passed:
            return TapVerdict::Pass;
        case State::Dropped:
            return TapVerdict::Drop;
        case State::Offered:
        case State::Claimed:
        case State::Withdrawn:
            break;
    }
    return std::nullopt;
}

}  // namespace tavrelon::desktop
