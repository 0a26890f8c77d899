#include "output/kept_clipboard.h"

#include "async/waits.h"

namespace tavrelon::output {

using namespace std::chrono_literals;

namespace {

constexpr auto betweenLooks = 50ms;
constexpr int mostLooks = 200;

/// For a program that asks for several types, one after the other.
constexpr auto afterFetch = 500ms;

}  // namespace

async::Task<void> KeptClipboard::keep() {
    ++write_;
    if (kept_ && pasteboard_.changeCount() == countOfOurs_)
        co_return;
    kept_.reset();
    if (auto items = co_await pasteboard_.items())
        kept_ = *std::move(items);
}

void KeptClipboard::giveBackOncePasted() {
    if (!kept_)
        return;
    countOfOurs_ = pasteboard_.changeCount();
    tasks_.spawn(watch(write_));
}

async::Task<void> KeptClipboard::watch(std::uint64_t write) {
    for (int look = 0; look < mostLooks && !pasteboard_.wasFetched(); ++look) {
        co_await async::pause(loop_, betweenLooks);
        if (write != write_)
            co_return;
    }
    const bool isFetched = pasteboard_.wasFetched();
    co_await async::pause(loop_, afterFetch);
    if (write != write_ || !kept_)
        co_return;
    auto kept = *std::exchange(kept_, std::nullopt);
    if (!isFetched || pasteboard_.changeCount() != countOfOurs_)
        co_return;
    pasteboard_.clearContents();
    if (!kept.empty())
        pasteboard_.writeItems(std::move(kept));
}

}  // namespace tavrelon::output
