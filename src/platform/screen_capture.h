#pragma once

#include <QString>
#include <expected>
#include <memory>
#include <optional>
#include <vector>

#include "async/task.h"
#include "platform/image.h"

namespace tavrelon::platform {

struct CaptureError {
    QString description;  ///< for the log
};

/// A display that can be captured. Sizes are pixels.
struct ShareableDisplay {
    quint64 identifier = 0;
    int width = 0;
    int height = 0;
    bool operator==(const ShareableDisplay&) const = default;
};

/// A window that can be captured, with its frame's size in pixels.
struct ShareableWindow {
    quint64 identifier = 0;
    std::optional<QString> bundleIdentifier;  ///< of the application that owns it
    bool isOnScreen = false;
    int width = 0;
    int height = 0;
    bool operator==(const ShareableWindow&) const = default;
};

/// What there is to capture. The first display is the main one. The window that has the focus comes first, then the
/// others from front to back.
struct ShareableContent {
    std::vector<ShareableDisplay> displays;
    std::vector<ShareableWindow> windows;
};

/// Pictures of the screen. Called on the main thread; the work is done on another, and every task ends within two
/// seconds. What vanishes meanwhile is an error. The pointer is in the picture where it stands over what is captured.
class ScreenCapture {
 public:
    virtual ~ScreenCapture() = default;

    /// Whether screens can be captured at all.
    virtual bool preflightAccess() = 0;

    virtual async::Task<std::expected<ShareableContent, CaptureError>> shareableContent() = 0;

    /// The window by itself, even where others cover it, as far as the platform can.
    virtual async::Task<std::expected<Image, CaptureError>> captureWindow(ShareableWindow window) = 0;
    virtual async::Task<std::expected<Image, CaptureError>> captureDisplay(ShareableDisplay display) = 0;

    /// Says that the window that is now in front will be captured, so that its picture is ready at once even if
    /// something covers it by then. For as long as the result lives, which this object must outlive; returns at once.
    virtual std::shared_ptr<void> expectCapture() = 0;
};

}  // namespace tavrelon::platform
