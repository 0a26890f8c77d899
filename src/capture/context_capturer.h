#pragma once

#include "async/task.h"
#include "capture/attribute_reader.h"
#include "capture/clipboard_selection.h"
#include "capture/focused_text.h"
#include "capture/screenshots.h"

namespace tavrelon::capture {

/// Whether a capture may take a screenshot.
enum class ScreenshotWish { Include, LeaveOut };

/// Tells what the user is looking at: application, window title, selection, the text of the focused field, a picture.
/// Main thread. What cannot be read is absent, with at most a log line.
class ContextCapturer {
 public:
    explicit ContextCapturer(platform::Platform& platform);

    Screenshots screenshots;

    /// The context of a request; it names the application that was in front when the capture began.
    async::Task<CapturedContext> captureContext(QString inputBuffer, ScreenshotWish wish);

    /// The text of the focused field and its selection; nothing where that text lies in elements of its own. Blocks for
    /// as long as the accessibility reads take, which the port bounds; safe inside the key callback.
    std::optional<AccessibilityTextSnapshot> fetchFocusedTextSnapshot();

    /// The selected text, not trimmed, possibly empty.
    async::Task<std::optional<QString>> selectedText();

    async::Task<std::optional<QString>> focusedWindowTitle();

    /// The selection as the copy shortcut gives it; see `ClipboardSelection`. In a password field no key is pressed.
    async::Task<std::optional<QString>> selectionViaClipboard(SelectAll selectAll);

 private:
    platform::Platform& platform_;
    AttributeReader reader_;
    FocusedText focusedText_;
    ClipboardSelection clipboardSelection_;
};

}  // namespace tavrelon::capture
