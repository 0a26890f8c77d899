#include <gtest/gtest.h>

#include "capture/context_capturer.h"
#include "support/run_task.h"
#include "support/test_desktop.h"
#include "text/localized_error.h"

namespace tavrelon::testing {

using capture::ContextCapturer;
using capture::ScreenshotMode;
using capture::ScreenshotWish;

class Screenshots : public ::testing::Test {
 public:
    TestDesktop desktop;
    ContextCapturer capturer{desktop.platform};
    QString front = QStringLiteral("org.example.editor");

    Screenshots() {
        desktop.screenCapture.permitted = true;
        desktop.screenCapture.addDisplay(1280, 800, 'D');
        desktop.screenCapture.addDisplay(640, 480, 'd');
    }
    auto screenshot() { return runTask(desktop.loop, capturer.screenshots.captureScreenshot()); }
    auto contextScreenshot(ScreenshotWish wish) {
        return runTask(desktop.loop, capturer.captureContext(QString(), wish)).screenshotData;
    }
};

TEST_F(Screenshots, ShowTheFirstWindowOnScreenOfTheFrontmostApplication) {
    auto& screen = desktop.screenCapture;
    screen.addWindow(QStringLiteral("org.example.other"), 100, 100, 'o');
    screen.addWindow(front, 90, 90, 'h');
    screen.windows.back().first.isOnScreen = false;
    screen.addWindow(front, 300, 200, 'w');
    screen.addWindow(front, 50, 50, 'x');
    EXPECT_EQ(screenshot(), "jpeg 300x200 w 0.7");
    EXPECT_EQ(contextScreenshot(ScreenshotWish::Include), "jpeg 300x200 w 0.7");
    EXPECT_EQ(contextScreenshot(ScreenshotWish::LeaveOut), std::nullopt);
}

TEST_F(Screenshots, TheWholeScreenIsShownOnlyWhereTheModeSaysSo) {
    desktop.screenCapture.addWindow(QStringLiteral("org.example.other"), 100, 100, 'o');
    EXPECT_EQ(screenshot(), std::nullopt) << "no window of the application is on the screen";
    capturer.screenshots.screenshotMode = ScreenshotMode::fullScreen;
    EXPECT_EQ(screenshot(), "jpeg 1280x800 D 0.7");
    desktop.screenCapture.displays.clear();
    EXPECT_EQ(screenshot(), std::nullopt);
}

TEST_F(Screenshots, NothingIsPhotographedWhileAPasswordFieldHasTheFocus) {
    desktop.screenCapture.addWindow(front, 300, 200, 'w');
    desktop.editor.open(QStringLiteral("hunter2"));
    desktop.accessibility.fieldKind = platform::FocusKind::Password;
    for (const auto mode : {ScreenshotMode::focusedWindow, ScreenshotMode::fullScreen}) {
        capturer.screenshots.screenshotMode = mode;
        EXPECT_EQ(screenshot(), std::nullopt);
    }
    EXPECT_EQ(runTask(desktop.loop, capturer.screenshots.captureFocusedWindowImage()), std::nullopt) << "nor filmed";
}

TEST_F(Screenshots, FollowModeAndQuality) {
    desktop.screenCapture.addWindow(front, 300, 200, 'w');
    capturer.screenshots.screenshotQuality = 0.25;
    capturer.screenshots.screenshotMode = ScreenshotMode::fullScreen;
    EXPECT_EQ(screenshot(), "jpeg 1280x800 D 0.25");
    capturer.screenshots.screenshotMode = ScreenshotMode::none;
    EXPECT_EQ(screenshot(), std::nullopt);
    capturer.screenshots.screenshotMode = ScreenshotMode::focusedWindow;
    desktop.screenCapture.permitted = false;
    EXPECT_EQ(screenshot(), std::nullopt);
}

TEST_F(Screenshots, AFailureIsThrownAndCostsARequestOnlyThePicture) {
    const auto window = desktop.screenCapture.addWindow(front, 300, 200, 'w');
    desktop.imageCodec.canEncode = false;
    EXPECT_EQ(screenshot(), std::nullopt);
    desktop.imageCodec.canEncode = true;
    desktop.screenCapture.contentError = platform::CaptureError{QStringLiteral("no answer")};
    EXPECT_THROW(screenshot(), text::LocalizedError);
    const auto context =
        runTask(desktop.loop, capturer.captureContext(QStringLiteral("typed"), ScreenshotWish::Include));
    EXPECT_EQ(context.screenshotData, std::nullopt);
    EXPECT_EQ(context.inputBuffer, QStringLiteral("typed"));
    EXPECT_EQ(context.appBundleID, front);
}

TEST_F(Screenshots, ScaleDownOnlyAndKeepTheAspect) {
    const auto scaled = [&](int width, int height, double maxWidth) {
        return runTask(desktop.loop, capturer.screenshots.scaledImage(plainImage(width, height, 'p'), maxWidth));
    };
    const auto image = scaled(3000, 1001, 1920);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 1920);
    EXPECT_EQ(image->height, 640);  // 640.64
    EXPECT_EQ(scaled(1920, 1080, 1920), std::nullopt);
    EXPECT_EQ(scaled(100, 100, 1920), std::nullopt);
}

}  // namespace tavrelon::testing
