#include "support/fake_screen_capture.h"

namespace tavrelon::testing {

using platform::CaptureError;
using platform::Image;

namespace {

template <typename Subjects>
std::expected<Image, CaptureError> pictureOf(const Subjects& subjects, quint64 identifier) {
    for (const auto& [subject, picture] : subjects)
        if (subject.identifier == identifier)
            return picture;
    return std::unexpected(CaptureError{QStringLiteral("It is no longer there.")});
}

}  // namespace

Image plainImage(int width, int height, char colour) {
    return {width, height, QByteArray(qsizetype{4} * width * height, colour)};
}

platform::ShareableWindow FakeScreenCapture::addWindow(std::optional<QString> bundleIdentifier, int width, int height,
                                                       char colour) {
    const platform::ShareableWindow window{.identifier = ++lastIdentifier_,
                                           .bundleIdentifier = std::move(bundleIdentifier),
                                           .isOnScreen = true,
                                           .width = width,
                                           .height = height};
    windows.emplace_back(window, plainImage(width, height, colour));
    return window;
}

platform::ShareableDisplay FakeScreenCapture::addDisplay(int width, int height, char colour) {
    const platform::ShareableDisplay display{.identifier = ++lastIdentifier_, .width = width, .height = height};
    displays.emplace_back(display, plainImage(width, height, colour));
    return display;
}

async::Task<FakeScreenCapture::Outcome<platform::ShareableContent>> FakeScreenCapture::shareableContent() {
    if (contentError)
        co_return std::unexpected(*contentError);
    platform::ShareableContent content;
    for (const auto& [display, picture] : displays)
        content.displays.push_back(display);
    for (const auto& [window, picture] : windows)
        content.windows.push_back(window);
    co_return content;
}

async::Task<FakeScreenCapture::Outcome<Image>> FakeScreenCapture::captureWindow(platform::ShareableWindow window) {
    co_return pictureOf(windows, window.identifier);
}

async::Task<FakeScreenCapture::Outcome<Image>> FakeScreenCapture::captureDisplay(platform::ShareableDisplay display) {
    co_return pictureOf(displays, display.identifier);
}

}  // namespace tavrelon::testing
