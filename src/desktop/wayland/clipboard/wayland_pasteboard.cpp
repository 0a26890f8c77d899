#include "desktop/wayland/clipboard/wayland_pasteboard.h"

#include "async/waits.h"
#include "desktop/wayland/clipboard/clipboard_types.h"

namespace tavrelon::desktop {

using platform::PasteboardError;
using platform::PasteboardItem;

std::expected<std::unique_ptr<WaylandPasteboard>, QString> WaylandPasteboard::create(
    async::MainLoop& loop, platform::Log& log, WaylandConnection& connection,
    std::shared_ptr<std::atomic<std::uint64_t>> presses, const ClipboardLimits& limits) {
    std::unique_ptr<WaylandPasteboard> made(new WaylandPasteboard(loop, log, connection));
    const bool isThere = connection.callAndSettle(
        [&connection, clipboard = made->clipboard_, presses, limits] {
            *clipboard = std::make_unique<WaylandClipboard>(connection, presses, limits);
        },
        WaylandConnection::startLimit);
    if (!isThere)
        return std::unexpected(QStringLiteral("The Wayland compositor does not tell of the clipboard."));
    return made;
}

WaylandPasteboard::~WaylandPasteboard() {
    connection_.call([clipboard = clipboard_] { clipboard->reset(); });
}

std::int64_t WaylandPasteboard::changeCount() {
    clearNow();
    const auto count = std::make_shared<std::atomic<std::int64_t>>(lastCount_);
    // Once to hear of every change up to now, and once to ask.
    connection_.callAndSettle([] {});
    if (connection_.call([count, clipboard = clipboard_] { *count = (*clipboard)->changes(); }))
        lastCount_ = *count;
    return lastCount_;
}

async::Task<ClipboardReading::Outcome> WaylandPasteboard::read(WaylandClipboard::Kind kind) {
    clearNow();
    co_return co_await async::fromCallback<ClipboardReading::Outcome>(loop_, [this, kind](auto resolver) {
        const auto id = ++lastReading_;
        if (connection_.isBroken())
            resolver.resolve(std::unexpected(PasteboardError::Failed));
        connection_.post([clipboard = clipboard_, id, kind, resolver] {
            if (*clipboard)
                (*clipboard)->read(id, kind, [resolver](ClipboardReading::Outcome outcome) mutable {
                    resolver.resolve(std::move(outcome));
                });
        });
        return std::shared_ptr<void>(nullptr, [weak = std::weak_ptr(clipboard_), connection = &connection_, id](void*) {
            // The connection outlives the clipboard.
            if (const auto clipboard = weak.lock())
                connection->post([clipboard, id] {
                    if (*clipboard)
                        (*clipboard)->abandon(id);
                });
        });
    });
}

async::Task<std::expected<std::vector<PasteboardItem>, PasteboardError>> WaylandPasteboard::items() {
    auto outcome = co_await read(WaylandClipboard::Kind::Items);
    if (!outcome)
        co_return std::unexpected(outcome.error());
    std::vector<PasteboardItem> found;
    if (!outcome->dataByType.empty())
        found.push_back(*std::move(outcome));
    co_return found;
}

async::Task<std::optional<QString>> WaylandPasteboard::string() {
    const auto outcome = co_await read(WaylandClipboard::Kind::Text);
    if (outcome)
        for (const auto& [type, bytes] : outcome->dataByType)
            if (isTextType(type))
                co_return decodeClipboardText(type, bytes);
    co_return std::nullopt;
}

bool WaylandPasteboard::wasFetched() {
    const auto fetched = std::make_shared<std::atomic<bool>>(false);
    return connection_.call([fetched, clipboard = clipboard_] { *fetched = (*clipboard)->wasFetched(); }) && *fetched;
}

void WaylandPasteboard::clearContents() {
    if (!std::exchange(clearing_, true))
        loop_.post(lifetime_.guard([this] { clearNow(); }));
}

bool WaylandPasteboard::setString(const QString& text) {
    return offer(textItem(text));
}

bool WaylandPasteboard::writeItems(std::vector<PasteboardItem> items) {
    if (!items.empty() && !items.front().dataByType.empty())
        return offer(std::move(items.front()));
    clearContents();
    return true;
}

bool WaylandPasteboard::offer(PasteboardItem item) {
    clearing_ = false;
    const bool taken = connection_.callAndSettle(
        [clipboard = clipboard_, item = std::move(item)]() mutable { (*clipboard)->offer(std::move(item)); });
    if (!taken)
        log_.line(QStringLiteral("[Pasteboard] The clipboard could not be taken"));
    return taken;
}

void WaylandPasteboard::clearNow() {
    if (std::exchange(clearing_, false) &&
        !connection_.callAndSettle([clipboard = clipboard_] { (*clipboard)->clear(); }))
        log_.line(QStringLiteral("[Pasteboard] The clipboard could not be cleared"));
}

}  // namespace tavrelon::desktop
