#pragma once

#include "async/task.h"
#include "capture/attribute_reader.h"
#include "capture/captured_context.h"
#include "capture/clipboard_selection.h"
#include "platform/platform.h"

namespace tavrelon::capture {

/// What a screenshot shows.
enum class ScreenshotMode { focusedWindow, fullScreen, none };

/// Whether a capture may take a screenshot.
enum class ScreenshotWish { Include, LeaveOut };

/// Tells what the user is looking at: application, window title, selection, the text of the focused field. Main thread.
/// Nothing throws; what cannot be read is absent, with at most a log line.
class ContextCapturer {
 public:
    explicit ContextCapturer(platform::Platform& platform);

    ScreenshotMode screenshotMode = ScreenshotMode::focusedWindow;
    double screenshotQuality = 0.7;
    double maxScreenshotWidth = 1920;

    /// The context of a request; it names the application that was in front when the capture began.
    async::Task<CapturedContext> captureContext(QString inputBuffer, ScreenshotWish wish);

    /// The text of the focused field and its selection. Blocks for as long as the accessibility reads take, which the
    /// port bounds; safe inside the key callback.
    std::optional<AccessibilityTextSnapshot> fetchFocusedTextSnapshot();

    /// The selected text, not trimmed, possibly empty.
    async::Task<std::optional<QString>> selectedText();

    async::Task<std::optional<QString>> focusedWindowTitle();

    /// The selection as the copy shortcut gives it; see `ClipboardSelection`.
    async::Task<std::optional<QString>> selectionViaClipboard(SelectAll selectAll) {
        return clipboardSelection_.read(selectAll);
    }

 private:
    std::optional<AccessibilityTextSnapshot> snapshotOf(const platform::AXElement& element);
    std::optional<text::Utf16Range> selectedRangeOf(const platform::AXElement& element);
    std::optional<QString> valueOf(const platform::AXElement& element);
    std::optional<AccessibilityTextSnapshot> windowedValueOf(const platform::AXElement& element,
                                                             text::Utf16Range selected);

    platform::Platform& platform_;
    AttributeReader reader_;
    ClipboardSelection clipboardSelection_;
};

}  // namespace tavrelon::capture
