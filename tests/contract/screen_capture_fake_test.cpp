#include "contract/screen_capture_contract.h"
#include "support/fake_screen_capture.h"
#include "support/run_task.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::testing {

namespace {

class FakeScreenWorld : public ScreenWorld {
 public:
    FakeScreenWorld() {
        screen_.permitted = true;
        screen_.addDisplay(64, 48, 'D');
    }
    platform::ScreenCapture& capture() override { return screen_; }
    void open(const QString& application) override {
        screen_.addWindow(application, 30, 20, 'w');
        std::ranges::rotate(screen_.windows, screen_.windows.end() - 1);
    }
    void closeAll() override { screen_.windows.clear(); }
    Outcome<platform::ShareableContent> content() override { return runTask(loop_, screen_.shareableContent()); }
    Outcome<platform::Image> picture(const platform::ShareableWindow& window) override {
        return runTask(loop_, screen_.captureWindow(window));
    }
    Outcome<platform::Image> picture(const platform::ShareableDisplay& display) override {
        return runTask(loop_, screen_.captureDisplay(display));
    }
    bool becomesTrue(const std::function<bool()>& condition) override { return condition(); }

 private:
    VirtualMainLoop loop_;
    FakeScreenCapture screen_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, ScreenCaptureContract,
                         ::testing::Values(ScreenWorldFactory([] { return std::make_unique<FakeScreenWorld>(); })),
                         [](const auto&) { return "Fake"; });

}  // namespace tavrelon::testing
