#include "desktop/x11/x11_event_tap_sequence.h"

#include <algorithm>

namespace tavrelon::desktop {

void KeySequence::see(const Stamp& stamp, platform::KeyEvent event, Expectation expectation, async::Instant now) {
    const bool stops = expectation == Expectation::StopsAtOurGrab;
    waiting_.push_back({stamp, std::move(event), stops ? std::optional(now + stopLimit) : std::nullopt});
}

std::optional<KeySequence::Stopped> KeySequence::stopped(const Stamp& stamp, Origin origin) {
    const auto isIt = [&](const Waiting& key) {
        const bool repeated = origin == Origin::Repeated && key.event.isRepeat && key.stamp.code == stamp.code;
        return key.deadline.has_value() && (repeated || key.stamp == stamp);
    };
    const auto found = std::ranges::find_if(waiting_, isIt);
    if (found == waiting_.end())
        return std::nullopt;
    Stopped stopped{{}, std::move(found->event)};
    std::for_each(waiting_.begin(), found, [&](Waiting& key) { stopped.before.push_back(std::move(key.event)); });
    waiting_.erase(waiting_.begin(), std::next(found));
    return stopped;
}

void KeySequence::thaw(async::Instant now) {
    frozen_ = false;
    for (auto& key : waiting_)
        if (key.deadline)
            key.deadline = std::max(*key.deadline, now + stopLimit);
}

std::optional<async::Instant> KeySequence::deadline() const {
    return waiting_.empty() || frozen_ ? std::nullopt : waiting_.front().deadline;
}

void KeySequence::expire(async::Instant now) {
    if (frozen_)
        return;
    for (auto& key : waiting_)
        if (key.deadline && *key.deadline <= now)
            key.deadline.reset();
}

std::vector<platform::KeyEvent> KeySequence::takeReady() {
    std::vector<platform::KeyEvent> ready;
    while (!waiting_.empty() && !waiting_.front().deadline) {
        ready.push_back(std::move(waiting_.front().event));
        waiting_.pop_front();
    }
    return ready;
}

}  // namespace tavrelon::desktop
