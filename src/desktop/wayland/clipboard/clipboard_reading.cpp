#include "desktop/wayland/clipboard/clipboard_reading.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "desktop/wayland/clipboard/clipboard_types.h"

namespace tavrelon::desktop {

using platform::PasteboardError;

ClipboardReading::ClipboardReading(WaylandConnection& connection, QStringList types, const ClipboardLimits& limits,
                                   std::function<void(const QString&, int)> receive, std::function<void(Outcome)> done)
    : connection_(connection),
      remaining_(std::move(types)),
      limits_(limits),
      receive_(std::move(receive)),
      done_(std::move(done)),
      end_(Clock::now() + limits.total) {
    remaining_.removeDuplicates();
}

ClipboardReading::~ClipboardReading() {
    closePipe();
}

void ClipboardReading::closePipe() {
    if (timer_ != 0)
        connection_.forget(std::exchange(timer_, 0));
    if (pipe_ < 0)
        return;
    connection_.unwatch(pipe_);
    ::close(std::exchange(pipe_, -1));
}

void ClipboardReading::readNext() {
    if (remaining_.isEmpty()) {
        const auto done = std::move(done_);
        done(outcome());
        return;
    }
    type_ = remaining_.takeFirst();
    bytes_.clear();
    std::array<int, 2> ends{};
    // Only our end must not block: the owner's is its own affair.
    if (::pipe2(ends.data(), O_CLOEXEC) != 0 || ::fcntl(ends[0], F_SETFL, O_NONBLOCK) != 0) {
        endForm(PasteboardError::Failed);
        return;
    }
    pipe_ = ends[0];
    receive_(type_, ends[1]);
    ::close(ends[1]);  // the library sends a copy of it
    connection_.watch(pipe_, POLLIN, [this] { readable(); });
    waitOn();
}

void ClipboardReading::waitOn() {
    if (timer_ != 0)
        connection_.forget(timer_);
    timer_ =
        connection_.at(std::min(end_, Clock::now() + limits_.silence), [this] { endForm(PasteboardError::TimedOut); });
}

void ClipboardReading::readable() {
    std::array<char, 65536> piece{};
    const auto count = ::read(pipe_, piece.data(), piece.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0) {
        endForm(count < 0 ? std::optional(PasteboardError::Failed) : std::nullopt);
        return;
    }
    received_ += count;
    if (received_ > limits_.bytes) {
        received_ -= bytes_.size() + count;
        endForm(PasteboardError::TooLarge);
        return;
    }
    bytes_.append(piece.data(), count);
    waitOn();
}

void ClipboardReading::endForm(std::optional<PasteboardError> lost) {
    closePipe();
    if (lost)
        lost_.emplace_back(type_, *lost);
    else if (!bytes_.isEmpty())
        item_.dataByType.emplace_back(type_, std::exchange(bytes_, {}));
    if (Clock::now() >= end_) {
        for (const auto& type : std::exchange(remaining_, {}))
            lost_.emplace_back(type, PasteboardError::TimedOut);
    }
    readNext();
}

ClipboardReading::Outcome ClipboardReading::outcome() {
    for (const auto& [type, why] : lost_)
        for (const auto isOfKind : {isTextType, isPictureType})
            if (isOfKind(type) &&
                std::ranges::none_of(item_.dataByType, [&](const auto& form) { return isOfKind(form.first); }))
                return std::unexpected(why);
    // With nothing at all there is no telling what was lost.
    if (item_.dataByType.empty() && !lost_.empty())
        return std::unexpected(lost_.front().second);
    return std::move(item_);
}

}  // namespace tavrelon::desktop
