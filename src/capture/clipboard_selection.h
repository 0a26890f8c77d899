#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "async/main_loop.h"
#include "async/task.h"
#include "platform/key_poster.h"
#include "platform/log.h"
#include "platform/pasteboard.h"

namespace tavrelon::capture {

/// Whether the whole field may be selected when nothing was.
enum class SelectAll { Allowed, Forbidden };

/// Reads a selection the way a user would: presses the copy shortcut and looks at what lands on the pasteboard, which
/// is put back afterwards with all its types. For applications that tell accessibility nothing. Where the pasteboard
/// could not be put back, nothing is pressed. Main thread; the waits are fixed, and a failure is an absent result.
class ClipboardSelection {
 public:
    ClipboardSelection(async::MainLoop& loop, platform::Log& log, platform::Pasteboard& pasteboard,
                       platform::KeyPoster& poster);

    /// The selected text, not trimmed. With `Allowed`, a field without a selection is selected whole and stays so.
    /// Before each key it asks `mayPress`: the waits are long enough for the user to be elsewhere by then.
    async::Task<std::optional<QString>> read(SelectAll selectAll, std::function<bool()> mayPress);

 private:
    /// What was on the pasteboard; absent when its owner did not tell: nothing could be put back.
    using Snapshot = std::optional<std::vector<platform::PasteboardItem>>;

    async::Task<Snapshot> snapshot();
    void restore(std::vector<platform::PasteboardItem> items);
    async::Task<std::optional<QString>> copied(SelectAll selectAll, std::function<bool()> mayPress);
    async::Task<void> pressCommand(keys::VirtualKey key, std::chrono::milliseconds wait);

    /// The pasteboard's text if the pasteboard changed since `baseCount`.
    async::Task<std::optional<QString>> stringSince(std::int64_t baseCount);
    std::optional<QString> finish(std::optional<QString> string);

    async::MainLoop& loop_;
    platform::Log& log_;
    platform::Pasteboard& pasteboard_;
    platform::KeyPoster& poster_;
};

}  // namespace tavrelon::capture
