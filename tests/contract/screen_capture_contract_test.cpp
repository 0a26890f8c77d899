#include "contract/screen_capture_contract.h"

namespace tavrelon::testing {

using platform::Image;

namespace {

bool fits(const std::expected<Image, platform::CaptureError>& image, int width, int height) {
    return image && image->width == width && image->height == height &&
           image->pixels.size() == qsizetype{4} * width * height;
}

}  // namespace

TEST_P(ScreenCaptureContract, DisplaysAreCapturedWhole) {
    EXPECT_TRUE(world->capture().preflightAccess());
    const auto content = world->content();
    ASSERT_TRUE(content && !content->displays.empty());
    for (const auto& display : content->displays) {
        EXPECT_GT(display.width * display.height, 0);
        EXPECT_TRUE(fits(world->picture(display), display.width, display.height));
    }
    EXPECT_FALSE(world->picture(platform::ShareableDisplay{.identifier = 999}));
}

TEST_P(ScreenCaptureContract, WindowsComeFromFrontToBackAndAreCapturedInTheirSize) {
    world->open(QStringLiteral("First"));
    world->open(QStringLiteral("Second"));
    EXPECT_TRUE(world->becomesTrue(
        [&] { return applications() == QStringList{QStringLiteral("Second"), QStringLiteral("First")}; }));
    const auto content = world->content();
    ASSERT_TRUE(content);
    for (const auto& window : content->windows)
        EXPECT_TRUE(fits(world->picture(window), window.width, window.height));
}

TEST_P(ScreenCaptureContract, AWindowThatIsGoneIsAnError) {
    world->open(QStringLiteral("Short-lived"));
    ASSERT_TRUE(world->becomesTrue([&] { return applications().size() == 1; }));
    const auto content = world->content();
    ASSERT_TRUE(content && content->windows.size() == 1);
    world->closeAll();
    EXPECT_TRUE(world->becomesTrue([&] { return applications().isEmpty(); }));
    const auto picture = world->picture(content->windows.front());
    ASSERT_FALSE(picture);
    EXPECT_FALSE(picture.error().description.isEmpty());
}

}  // namespace tavrelon::testing
