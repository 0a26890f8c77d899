#pragma once

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/wayland/clipboard/wayland_clipboard.h"
#include "platform/log.h"
#include "platform/pasteboard.h"

namespace tavrelon::desktop {

/// The general pasteboard on the clipboard of the seat. A type is a MIME type. Main thread; what we put there is served
/// by the connection's own, and gone with the program.
///
/// One item is known. A clearing takes effect at the latest in the next turn of the main loop, so that one followed by
/// a write is a single change for clipboard managers.
class WaylandPasteboard : public platform::Pasteboard {
 public:
    /// The referents must outlive the pasteboard. The error is a sentence for the log.
    static std::expected<std::unique_ptr<WaylandPasteboard>, QString> create(
        async::MainLoop& loop, platform::Log& log, WaylandConnection& connection,
        std::shared_ptr<std::atomic<std::uint64_t>> presses, const ClipboardLimits& limits = {});
    ~WaylandPasteboard() override;

    std::int64_t changeCount() override;
    async::Task<std::expected<std::vector<platform::PasteboardItem>, platform::PasteboardError>> items() override;
    async::Task<std::optional<QString>> string() override;
    bool wasFetched() override;
    void clearContents() override;
    bool setString(const QString& text) override;
    bool writeItems(std::vector<platform::PasteboardItem> items) override;

 private:
    /// Made and ended on the connection's thread, and used there alone.
    using Clipboard = std::shared_ptr<std::unique_ptr<WaylandClipboard>>;

    WaylandPasteboard(async::MainLoop& loop, platform::Log& log, WaylandConnection& connection)
        : loop_(loop), log_(log), connection_(connection) {}

    async::Task<ClipboardReading::Outcome> read(WaylandClipboard::Kind kind);
    bool offer(platform::PasteboardItem item);
    void clearNow();

    async::MainLoop& loop_;
    platform::Log& log_;
    WaylandConnection& connection_;
    Clipboard clipboard_ = std::make_shared<std::unique_ptr<WaylandClipboard>>();
    std::uint64_t lastReading_ = 0;
    std::int64_t lastCount_ = 1;
    bool clearing_ = false;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
