#pragma once

#include <QByteArray>
#include <memory>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/x11/selection/x11_selection_thread.h"
#include "platform/log.h"
#include "platform/pasteboard.h"

namespace tavrelon::desktop {

/// The general pasteboard on the CLIPBOARD selection, or a second one on PRIMARY. A type is the name of a target. Main
/// thread; what we put there is served from a thread of its own.
///
/// X11 knows one item. A cleared pasteboard is a selection without an owner; a clearing takes effect at the latest in
/// the next turn of the main loop, so that one followed by a write is a single change for clipboard managers.
class X11Pasteboard : public platform::Pasteboard {
 public:
    /// How long the clipboard manager may take at the end.
    static constexpr std::chrono::milliseconds handOverLimit{2000};

    /// Connects to the X server; an empty name stands for the DISPLAY of the environment. The error says what is
    /// missing. The loop and the log must outlive the pasteboard.
    static std::expected<std::unique_ptr<X11Pasteboard>, QString> create(
        async::MainLoop& loop, platform::Log& log, const QByteArray& displayName = {},
        const SelectionReadLimits& limits = {}, SelectionName selection = SelectionName::Clipboard);
    /// Hands over, then ends. Readings under way fail.
    ~X11Pasteboard() override;

    std::int64_t changeCount() override;
    async::Task<std::expected<std::vector<platform::PasteboardItem>, platform::PasteboardError>> items() override;
    async::Task<std::optional<QString>> string() override;
    bool wasFetched() override;
    void clearContents() override;
    bool setString(const QString& text) override;
    bool writeItems(std::vector<platform::PasteboardItem> items) override;

    /// The text that was put here last with success, whether or not it still is; absent after anything but `setString`.
    const std::optional<QString>& lastString() const { return lastString_; }

    /// For an X server within a compositor, which fetches for windows of its own: what is fetched after one more of
    /// these presses was fetched by the window in front.
    void countPresses(std::shared_ptr<const std::atomic<std::uint64_t>> presses) {
        thread_->countPresses(std::move(presses));
    }

    /// What is here stands there too, and a fetching of that counts as one of ours, until something else is put here.
    void alsoFetchedFrom(const X11Pasteboard& other) { copy_ = other.thread_; }

    /// Asks the clipboard manager, if there is one, to keep what we have on the clipboard, so that it survives us.
    /// Blocks until it has answered, at most for `limit`.
    SelectionThread::HandOver handOver(std::chrono::milliseconds limit = handOverLimit);

 private:
    X11Pasteboard(async::MainLoop& loop, platform::Log& log, std::unique_ptr<SelectionThread> thread);

    async::Task<SelectionOutcome> read(SelectionReader::Kind kind);
    bool offer(const platform::PasteboardItem& item);
    void clearNow();

    async::MainLoop& loop_;
    platform::Log& log_;
    std::shared_ptr<SelectionThread> thread_;
    std::weak_ptr<SelectionThread> copy_;
    bool clearing_ = false;
    std::optional<QString> lastString_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
