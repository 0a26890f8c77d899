#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>

#include "async/task.h"
#include "output/answer_place.h"
#include "output/kept_clipboard.h"
#include "platform/platform.h"
#include "scenes/replacement_strategy.h"
#include "text/localized_error.h"

namespace tavrelon::output {

/// Why a result could not be placed. What was deleted in the field by then stays deleted.
class OutputWriterError : public text::LocalizedError {
 public:
    enum class Code { writeFailed, permissionDenied, noFrontmostApp, invalidImageData, leftOnClipboard };

    explicit OutputWriterError(Code code, const text::LocalizedText& detail = {});
    Code code() const { return code_; }

 private:
    Code code_;
};

/// Whether a picture is pasted after it was put on the pasteboard.
enum class AutoPaste { Yes, No };

/// Where a write put its text or picture.
enum class Placement {
    Written,
    OnClipboard,  ///< only there: its place was not in front any more, or is not safe for it; nothing was written
};

/// A picture's text for the user, and where the picture is.
struct ImageOutcome {
    QString text;
    Placement placement = Placement::Written;
};

/// What is shown and kept in the place of a picture without a caption.
inline constexpr QStringView pictureCopied = u"图片已复制到剪贴板";

/// Throws `leftOnClipboard`, which tells the user, unless it was written.
void ensureWritten(Placement placement);

/// Puts a result into the place that it is for. Main thread; one write at a time, which its callers' single processing
/// task ensures. A cancelled write stops at its next wait and leaves what it has done.
///
/// No key is pressed and nothing written where another window or element, or a password field, has the focus by then:
/// the result is left on the clipboard, as where no key is known that pastes. So is a text of several lines before a
/// terminal, which may take each line for a command: nothing on this desktop tells whether what runs in it asked for
/// pasted text to be marked as such. Of a text in one line a terminal does not get the line end.
///
/// All texts lose control characters and loose bidirectional ones first.
class OutputWriter {
 public:
    explicit OutputWriter(platform::Platform& platform)
        : platform_(platform), place_(platform), keptClipboard_(platform.mainLoop, platform.pasteboard) {}

    bool useClipboardFallback = true;  ///< kept for the record; the paste fall-back always runs
    std::chrono::milliseconds postPasteDelay{100};

    /// Whether the user's clipboard is given back after a paste; without it the result stays there.
    std::function<bool()> keepsClipboard = [] { return false; };

    /// What is written from now on is for the window and the element that have the focus now, or for that window.
    void aim() { place_.remember(); }
    void aimAt(const platform::RunningApplication& application) { place_.remember(application); }

    /// Writes `text`. `deleteCharCount`, else `fallbackDeleteCount`, is how many characters `deleteChars` removes; a
    /// negative count is a programming fault. `standing` is what these characters are: in a field that can be edited by
    /// accessibility they are replaced in one step, without a key, and in one that can be read nothing is removed
    /// unless they stand before the caret. Throws `OutputWriterError` or `async::CancellationError`; when the
    /// pasteboard cannot be taken nothing is removed nor pasted.
    async::Task<Placement> writeText(QString text, scenes::ReplacementStrategy::Method method,
                                     std::optional<qint64> deleteCharCount, qint64 fallbackDeleteCount,
                                     StandingText standing = {});

    /// Puts a picture, as the image codec gave it, on the pasteboard and pastes it; gives a text to show. One that
    /// could not be decoded leaves the pasteboard empty and gives the caption, or `invalidImageData` without one.
    async::Task<ImageOutcome> writeImage(std::optional<platform::PasteboardItem> picture,
                                         std::optional<QString> caption, AutoPaste autoPaste);

    /// Puts `text` on the pasteboard and presses the paste shortcut.
    async::Task<Placement> pasteText(QString text);

    /// Gives up the word that an input method shows half composed, which would take the keys of a write for itself.
    async::Task<void> cancelComposition();

    /// Removes `count` characters before the caret, one key at a time; stops for good when its place is not in front.
    /// Removes nothing where the field can be read and `standing` does not stand there.
    async::Task<Placement> deleteBackward(qint64 count, StandingText standing = {});

 private:
    async::Task<bool> wasReplacedInPlace(StandingText standing, QString text);
    async::Task<Placement> replaceSelection(QString text);
    async::Task<bool> tookEffect(platform::AXError outcome, platform::AXElement field, QString text);
    async::Task<Placement> pressPaste();
    Placement leaveOnClipboard(const QString& text);
    async::Task<void> keepClipboard();
    std::optional<QString> textForPlace(QString text) const;
    void pressPlain(keys::VirtualKey key) { platform_.keyPoster.press(key, keys::noModifiers); }

    platform::Platform& platform_;
    AnswerPlace place_;
    KeptClipboard keptClipboard_;
};

}  // namespace tavrelon::output
