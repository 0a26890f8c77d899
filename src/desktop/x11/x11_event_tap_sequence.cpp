#include "desktop/x11/x11_event_tap_sequence.h"

#include <algorithm>

namespace tavrelon::desktop {

void KeySequence::see(const Stamp& stamp, platform::KeyEvent event, Expectation expectation, async::Instant now) {
    const bool stops = expectation == Expectation::StopsAtOurGrab;
    waiting_.push_back({stamp, std::move(event), stops ? std::optional(now + stopLimit) : std::nullopt});
}

std::optional<platform::KeyEvent> KeySequence::stopped(const Stamp& stamp) {
    const auto found = std::ranges::find_if(
        waiting_, [&](const Waiting& key) { return key.stamp == stamp && key.deadline.has_value(); });
    if (found == waiting_.end())
        return std::nullopt;
    auto event = std::move(found->event);
    // The server keeps the order, so what was seen before and did not stop will not stop any more.
    std::for_each(waiting_.begin(), found, [](Waiting& key) { key.deadline.reset(); });
    waiting_.erase(found);
    return event;
}

void KeySequence::thaw(async::Instant now) {
    frozen_ = false;
    for (auto& key : waiting_)
        if (key.deadline)
            key.deadline = std::max(*key.deadline, now + stopLimit);
}

std::vector<platform::KeyEvent> KeySequence::takeReady(async::Instant now) {
    std::vector<platform::KeyEvent> ready;
    while (!waiting_.empty()) {
        const auto& deadline = waiting_.front().deadline;
        if (deadline && (frozen_ || now < *deadline))
            break;
        ready.push_back(std::move(waiting_.front().event));
        waiting_.pop_front();
    }
    return ready;
}

std::optional<async::Instant> KeySequence::deadline() const {
    return waiting_.empty() || frozen_ ? std::nullopt : waiting_.front().deadline;
}

}  // namespace tavrelon::desktop
