#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <optional>

#include "async/task.h"
#include "platform/platform.h"
#include "scenes/replacement_strategy.h"
#include "text/localized_error.h"

namespace tavrelon::output {

/// Why a result could not be placed. What was deleted in the field by then stays deleted.
class OutputWriterError : public text::LocalizedError {
 public:
    enum class Code { writeFailed, permissionDenied, noFrontmostApp, invalidImageData };

    explicit OutputWriterError(Code code, const QString& detail = {});
    Code code() const { return code_; }

 private:
    Code code_;
};

/// Whether a picture is pasted after it was put on the pasteboard.
enum class AutoPaste { Yes, No };

/// Puts a result into the application that is frontmost when it runs. Main thread; one write at a time, which its
/// callers' single processing task ensures. A cancelled write stops at its next wait and leaves what it has done.
class OutputWriter {
 public:
    explicit OutputWriter(platform::Platform& platform) : platform_(platform) {}

    bool useClipboardFallback = true;  ///< kept for the record; the paste fall-back always runs
    std::chrono::milliseconds postPasteDelay{100};

    /// Writes `text`. `deleteCharCount`, else `fallbackDeleteCount`, is how many characters `deleteChars` removes; a
    /// negative count is a programming fault. Throws `OutputWriterError` or `async::CancellationError`; when the
    /// pasteboard cannot be taken nothing is pasted.
    async::Task<void> writeText(QString text, scenes::ReplacementStrategy::Method method,
                                std::optional<qint64> deleteCharCount, qint64 fallbackDeleteCount);

    /// Puts a picture, as the image codec gave it, on the pasteboard and pastes it; gives a text to show. One that
    /// could not be decoded leaves the pasteboard empty and gives the caption, or `invalidImageData` without one.
    async::Task<QString> writeImage(std::optional<platform::PasteboardItem> picture, std::optional<QString> caption,
                                    AutoPaste autoPaste);

    /// Puts `text` on the pasteboard, where it stays, and presses the paste shortcut.
    async::Task<void> pasteText(QString text);

    /// Gives up the word that an input method shows half composed, which would take the keys of a write for itself.
    /// Whether there was one.
    async::Task<bool> cancelComposition();

    /// Removes `count` characters before the caret, one key at a time.
    async::Task<void> deleteBackward(qint64 count);

 private:
    async::Task<void> replaceSelection(QString text);
    async::Task<bool> wasReplaced(platform::AXElement field, QString text);
    async::Task<void> pressPaste();
    void pressPlain(keys::VirtualKey key) { platform_.keyPoster.press(key, keys::noModifiers); }

    platform::Platform& platform_;
};

}  // namespace tavrelon::output
