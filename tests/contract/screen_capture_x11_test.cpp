#include <unistd.h>

#include "contract/screen_capture_contract.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_screen_capture.h"
#include "support/recording_log.h"
#include "support/run_task_on_qt.h"
#include "support/test_window.h"

namespace tavrelon::testing {

namespace {

class X11ScreenWorld : public ScreenWorld {
 public:
    platform::ScreenCapture& capture() override { return *capture_; }
    void open(const QString& application) override {
        windows_.push_back(std::make_unique<TestWindow>(TestWindowProperties{.processIdentifier = qint64{::getpid()},
                                                                             .machine = thisMachine(),
                                                                             .windowClass = application,
                                                                             .title = application}));
        // A window that opens while the window manager is still starting does not get the focus by itself.
        const platform::RunningApplication opened{.processIdentifier = qint64{::getpid()},
                                                  .bundleIdentifier = application,
                                                  .localizedName = application,
                                                  .windowIdentifier = windows_.back()->window()};
        EXPECT_TRUE(becomesTrue([&] {
            workspace_->activate(opened);
            return runQtUntil([&] { return workspace_->frontmostWindowTitle() == application; },
                              std::chrono::milliseconds(500));
        }));
    }
    void closeAll() override { windows_.clear(); }
    Outcome<platform::ShareableContent> content() override { return runTaskOnQt(loop_, capture_->shareableContent()); }
    Outcome<platform::Image> picture(const platform::ShareableWindow& window) override {
        return runTaskOnQt(loop_, capture_->captureWindow(window));
    }
    Outcome<platform::Image> picture(const platform::ShareableDisplay& display) override {
        return runTaskOnQt(loop_, capture_->captureDisplay(display));
    }
    bool becomesTrue(const std::function<bool()>& condition) override { return runQtUntil(condition); }

 private:
    desktop::QtMainLoop loop_;
    RecordingLog log_;
    std::unique_ptr<desktop::X11Workspace> workspace_ = desktop::X11Workspace::create().value();
    std::unique_ptr<desktop::X11ScreenCapture> capture_ =
        desktop::X11ScreenCapture::create(loop_, log_, *workspace_).value();
    std::vector<std::unique_ptr<TestWindow>> windows_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Real, ScreenCaptureContract,
                         ::testing::Values(ScreenWorldFactory([] { return std::make_unique<X11ScreenWorld>(); })),
                         [](const auto&) { return "X11"; });

}  // namespace tavrelon::testing
