#pragma once

#include "async/task.h"
#include "capture/attribute_reader.h"
#include "capture/captured_context.h"
#include "capture/clipboard_selection.h"
#include "platform/platform.h"

namespace tavrelon::capture {

/// What a screenshot shows. No mode stands in for another: the whole screen goes out only where the user chose it.
enum class ScreenshotMode { focusedWindow, fullScreen, none };

/// Whether a capture may take a screenshot.
enum class ScreenshotWish { Include, LeaveOut };

/// Tells what the user is looking at: application, window title, selection, the text of the focused field, a picture.
/// Main thread. What cannot be read is absent, with at most a log line; only the captures of pictures throw.
class ContextCapturer {
 public:
    explicit ContextCapturer(platform::Platform& platform);

    ScreenshotMode screenshotMode = ScreenshotMode::focusedWindow;
    double screenshotQuality = 0.7;    ///< JPEG compression factor, 0 to 1
    double maxScreenshotWidth = 1920;  ///< pixels; for frames of a video, while a request's picture keeps its size

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

    /// A picture by `screenshotMode`, as JPEG; absent without the right to capture and while a password field has the
    /// focus. Throws what the platform reports.
    async::Task<std::optional<QByteArray>> captureScreenshot();

    /// Says that a screenshot of what is now in front will be wanted, so that it takes no time then. For as long as the
    /// result lives, which the platform must outlive; safe inside the key callback.
    std::shared_ptr<void> expectScreenshot();

    /// The same for `captureFocusedWindowImage`, whatever the mode.
    std::shared_ptr<void> expectWindowImage();

    /// The first window of the frontmost application; absent where it has none on screen, and while a password field
    /// has the focus. Throws what the platform reports.
    async::Task<std::optional<platform::Image>> captureFocusedWindowImage();
    async::Task<std::optional<platform::Image>> captureFullScreenImage();

    /// JPEG with `screenshotQuality`.
    async::Task<std::optional<QByteArray>> encodeJPEG(platform::Image image);

    /// The image at `maxWidth` with its aspect kept; absent where it is no wider.
    async::Task<std::optional<platform::Image>> scaledImage(platform::Image image, double maxWidth);

 private:
    async::Task<std::optional<QByteArray>> screenshotOrNothing();
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
