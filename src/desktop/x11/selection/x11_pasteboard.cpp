#include "desktop/x11/selection/x11_pasteboard.h"

#include "async/waits.h"

namespace tavrelon::desktop {

using platform::PasteboardError;
using platform::PasteboardItem;

namespace {

/// Keeps a reading under way; its end takes the reading back.
class PendingReading {
 public:
    PendingReading(std::weak_ptr<SelectionThread> thread, std::uint64_t id) : thread_(std::move(thread)), id_(id) {}
    PendingReading(PendingReading&&) noexcept = default;
    PendingReading& operator=(PendingReading&&) = delete;
    ~PendingReading() {
        if (const auto thread = thread_.lock())
            thread->abandon(id_);
    }

 private:
    std::weak_ptr<SelectionThread> thread_;
    std::uint64_t id_;
};

}  // namespace

std::expected<std::unique_ptr<X11Pasteboard>, QString> X11Pasteboard::create(async::MainLoop& loop, platform::Log& log,
                                                                             const QByteArray& displayName,
                                                                             const SelectionReadLimits& limits,
                                                                             SelectionName selection) {
    auto thread = SelectionThread::start(displayName, selection, limits);
    if (!thread)
        return std::unexpected(thread.error());
    return std::unique_ptr<X11Pasteboard>(new X11Pasteboard(loop, log, std::move(*thread)));
}

X11Pasteboard::X11Pasteboard(async::MainLoop& loop, platform::Log& log, std::unique_ptr<SelectionThread> thread)
    : loop_(loop), log_(log), thread_(std::move(thread)) {}

X11Pasteboard::~X11Pasteboard() {
    handOver();
}

std::int64_t X11Pasteboard::changeCount() {
    clearNow();
    return thread_->changeCount();
}

async::Task<SelectionOutcome> X11Pasteboard::read(SelectionReader::Kind kind) {
    clearNow();
    co_return co_await async::fromCallback<SelectionOutcome>(loop_, [this, kind](auto resolver) {
        const auto id =
            thread_->read(kind, [resolver](SelectionOutcome outcome) mutable { resolver.resolve(std::move(outcome)); });
        return PendingReading(thread_, id);
    });
}

async::Task<std::expected<std::vector<PasteboardItem>, PasteboardError>> X11Pasteboard::items() {
    auto outcome = co_await read(SelectionReader::Kind::Items);
    if (!outcome)
        co_return std::unexpected(outcome.error());
    std::vector<PasteboardItem> found;
    if (!outcome->item.dataByType.empty())
        found.push_back(std::move(outcome->item));
    co_return found;
}

async::Task<std::optional<QString>> X11Pasteboard::string() {
    auto outcome = co_await read(SelectionReader::Kind::Text);
    co_return outcome ? std::move(outcome->text) : std::nullopt;
}

bool X11Pasteboard::wasFetched() {
    const auto copy = copy_.lock();
    return thread_->wasFetched() || (copy && copy->wasFetched());
}

void X11Pasteboard::clearContents() {
    lastString_.reset();
    copy_.reset();
    if (!std::exchange(clearing_, true))
        loop_.post(lifetime_.guard([this] { clearNow(); }));
}

bool X11Pasteboard::setString(const QString& text) {
    if (!offer({.dataByType = {{QStringLiteral("UTF8_STRING"), text.toUtf8()}}}))
        return false;
    lastString_ = text;
    return true;
}

bool X11Pasteboard::writeItems(std::vector<PasteboardItem> items) {
    if (!items.empty() && !items.front().dataByType.empty())
        return offer(items.front());
    clearContents();
    return true;
}

SelectionThread::HandOver X11Pasteboard::handOver(std::chrono::milliseconds limit) {
    clearNow();
    return thread_->handOver(limit);
}

bool X11Pasteboard::offer(const PasteboardItem& item) {
    clearing_ = false;
    lastString_.reset();
    copy_.reset();
    // On a busy machine the thread may have been late, and the first offer is there by the second.
    const bool taken = thread_->offer(item) || thread_->offer(item);
    if (!taken)
        log_.line(QStringLiteral("[Pasteboard] The clipboard could not be taken"));
    return taken;
}

void X11Pasteboard::clearNow() {
    if (std::exchange(clearing_, false) && !thread_->release())
        log_.line(QStringLiteral("[Pasteboard] The clipboard could not be cleared"));
}

}  // namespace tavrelon::desktop
