#include "media/window_video_recorder.h"

#include <gtest/gtest.h>

#include "support/run_task.h"
#include "support/test_desktop.h"

namespace tavrelon::media {

using namespace std::chrono_literals;

class WindowVideoRecorderTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desk;
    capture::Screenshots screenshots{desk.platform};
    async::TaskScope scope{desk.loop};
    std::optional<WindowVideoRecorder> recorder;

    WindowVideoRecorderTest() {
        desk.screenCapture.permitted = true;
        recorder.emplace(desk.platform, screenshots, 500ms, 24);
    }
    void show(int width, int height, char colour = 'w') {
        desk.screenCapture.windows.clear();
        desk.screenCapture.addWindow(QStringLiteral("org.example.editor"), width, height, colour);
    }
    void start() {
        scope.spawn(recorder->startCapture());
        desk.loop.runUntilIdle();
    }
    std::vector<QByteArray> stop() {
        std::vector<QByteArray> frames;
        scope.spawn(collect(recorder->stopCapture(), frames));
        desk.loop.runUntilIdle();
        return frames;
    }
    static async::Task<void> collect(async::Task<std::vector<QByteArray>> stop, std::vector<QByteArray>& frames) {
        frames = co_await std::move(stop);
    }
};

TEST_F(WindowVideoRecorderTest, KeepsTheLatestTwentyFourOldestFirst) {
    show(100, 50, 'a');
    start();
    for (char colour = 'b'; colour <= 'y'; ++colour) {  // a to y are 25
        show(100, 50, colour);
        desk.loop.advance(500ms);
    }
    const auto frames = stop();
    ASSERT_EQ(frames.size(), 24U);
    EXPECT_EQ(frames.front(), "jpeg 100x50 b 0.7");
    EXPECT_EQ(frames.back(), "jpeg 100x50 y 0.7");
    desk.loop.advance(5s);
    EXPECT_FALSE(desk.loop.hasTimers()) << "it goes on";
}

TEST_F(WindowVideoRecorderTest, WidePicturesAreScaledUnlessTheWidthIsZero) {
    show(3840, 2160);
    start();
    show(1280, 720);
    desk.loop.advance(500ms);
    EXPECT_EQ(stop(), (std::vector<QByteArray>{"jpeg 1920x1080 w 0.7", "jpeg 1280x720 w 0.7"}));
    screenshots.maxScreenshotWidth = 0;
    show(3840, 2160);
    start();
    EXPECT_EQ(stop(), (std::vector<QByteArray>{"jpeg 3840x2160 w 0.7"})) << "and a new list";
    screenshots.maxScreenshotWidth = 1920;
    recorder->longestSide = 1024;
    show(1000, 2048);
    start();
    EXPECT_EQ(stop(), (std::vector<QByteArray>{"jpeg 500x1024 w 0.7"}));
}

TEST_F(WindowVideoRecorderTest, WhatCannotBeCapturedCostsItsFrameOnly) {
    show(100, 50);
    desk.screenCapture.permitted = false;
    start();
    desk.screenCapture.permitted = true;
    desk.screenCapture.windows.clear();  // closed, and there is no display either
    desk.loop.advance(500ms);
    desk.screenCapture.contentError = {QStringLiteral("gone")};
    desk.loop.advance(500ms);
    desk.screenCapture.contentError.reset();
    show(100, 50);
    desk.imageCodec.canEncode = false;
    desk.loop.advance(500ms);
    desk.imageCodec.canEncode = true;
    desk.loop.advance(500ms);
    EXPECT_EQ(stop(), (std::vector<QByteArray>{"jpeg 100x50 w 0.7"}));
}

TEST_F(WindowVideoRecorderTest, AStopAtOnceGivesNothingAndTheEndOfTheOwnerEndsTheSampling) {
    show(100, 50);
    scope.spawn(recorder->startCapture());
    EXPECT_TRUE(stop().empty());
    start();
    EXPECT_TRUE(desk.loop.hasTimers());
    recorder.reset();
    EXPECT_FALSE(desk.loop.hasTimers());
}

}  // namespace tavrelon::media
