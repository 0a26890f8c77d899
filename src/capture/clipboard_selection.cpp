#include "capture/clipboard_selection.h"

#include "async/waits.h"

namespace tavrelon::capture {

using namespace std::chrono_literals;

namespace {

// What slow applications need after a copy and a select-all. They are the whole budget of this way of reading.
constexpr auto afterCopy = 60ms;
constexpr auto afterSelectAll = 40ms;

bool isMissing(const std::optional<QString>& string) {
    return !string || string->isEmpty();
}

}  // namespace

ClipboardSelection::ClipboardSelection(async::MainLoop& loop, platform::Log& log, platform::Pasteboard& pasteboard,
                                       platform::KeyPoster& poster)
    : loop_(loop), log_(log), pasteboard_(pasteboard), poster_(poster) {}

async::Task<std::optional<QString>> ClipboardSelection::read(SelectAll selectAll, std::function<bool()> mayPress) {
    auto saved = co_await snapshot();
    if (!saved)
        co_return finish(std::nullopt);
    const auto baseCount = pasteboard_.changeCount();
    auto string = co_await copied(selectAll, std::move(mayPress));
    if (pasteboard_.changeCount() != baseCount)
        restore(*std::move(saved));
    co_return finish(std::move(string));
}

async::Task<std::optional<QString>> ClipboardSelection::copied(SelectAll selectAll, std::function<bool()> mayPress) {
    const auto baseCount = pasteboard_.changeCount();
    const platform::ModifiersAside aside(poster_);
    if (!mayPress())
        co_return std::nullopt;
    co_await pressCommand(keys::keyC, afterCopy);
    auto string = co_await stringSince(baseCount);
    if (!isMissing(string) || selectAll == SelectAll::Forbidden || !mayPress())
        co_return string;
    co_await pressCommand(keys::keyA, afterSelectAll);
    if (!mayPress())
        co_return std::nullopt;
    co_await pressCommand(keys::keyC, afterCopy);
    co_return co_await stringSince(baseCount);
}

async::Task<ClipboardSelection::Snapshot> ClipboardSelection::snapshot() {
    auto items = co_await async::shielded(pasteboard_.items());
    if (!items) {
        log_.line(
            QStringLiteral("[ContextCapturer] The clipboard's owner did not hand out its content; "
                           "it could not be put back, so nothing is copied"));
        co_return std::nullopt;
    }
    co_return *std::move(items);
}

void ClipboardSelection::restore(std::vector<platform::PasteboardItem> items) {
    pasteboard_.clearContents();
    if (!items.empty())
        pasteboard_.writeItems(std::move(items));
}

async::Task<void> ClipboardSelection::pressCommand(keys::VirtualKey key, std::chrono::milliseconds wait) {
    poster_.press(key, keys::commandFlag);
    co_await async::ignoringCancellation(async::pause(loop_, wait));
}

async::Task<std::optional<QString>> ClipboardSelection::stringSince(std::int64_t baseCount) {
    if (pasteboard_.changeCount() == baseCount)
        co_return std::nullopt;
    co_return co_await async::shielded(pasteboard_.string());
}

std::optional<QString> ClipboardSelection::finish(std::optional<QString> string) {
    if (isMissing(string)) {
        log_.line(QStringLiteral("[ContextCapturer] Clipboard fallback did not capture selection"));
        return std::nullopt;
    }
    log_.line(QStringLiteral("[ContextCapturer] Clipboard fallback captured selection"));
    return string;
}

}  // namespace tavrelon::capture
