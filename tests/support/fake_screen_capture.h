#pragma once

#include <vector>

#include "platform/screen_capture.h"

namespace tavrelon::testing {

/// A screen of windows and displays that a test sets up. Tests change the members at any time.
class FakeScreenCapture : public platform::ScreenCapture {
 public:
    template <typename T>
    using Outcome = std::expected<T, platform::CaptureError>;

    bool permitted = false;
    std::vector<std::pair<platform::ShareableWindow, platform::Image>> windows;
    std::vector<std::pair<platform::ShareableDisplay, platform::Image>> displays;
    std::shared_ptr<void> expectation = std::make_shared<int>();  ///< shared with those who expect a capture
    std::optional<platform::CaptureError> contentError;           ///< what is there cannot be told

    /// Adds a window or display with a picture of its size, all in one colour.
    platform::ShareableWindow addWindow(std::optional<QString> bundleIdentifier, int width, int height, char colour);
    platform::ShareableDisplay addDisplay(int width, int height, char colour);

    bool preflightAccess() override { return permitted; }
    async::Task<Outcome<platform::ShareableContent>> shareableContent() override;
    async::Task<Outcome<platform::Image>> captureWindow(platform::ShareableWindow window) override;
    async::Task<Outcome<platform::Image>> captureDisplay(platform::ShareableDisplay display) override;
    std::shared_ptr<void> expectCapture() override { return expectation; }

 private:
    quint64 lastIdentifier_ = 0;
};

/// A picture in one colour.
platform::Image plainImage(int width, int height, char colour);

}  // namespace tavrelon::testing
