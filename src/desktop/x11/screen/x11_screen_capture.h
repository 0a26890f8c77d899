#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "async/main_loop.h"
#include "desktop/x11/screen/x11_screen_window.h"
#include "desktop/x11/windows/x11_workspace.h"
#include "platform/log.h"
#include "platform/screen_capture.h"

namespace tavrelon::desktop {

/// Takes pictures of windows and monitors of an X11 desktop. The pictures are taken on a thread with a connection of
/// its own; a picture that nobody waits for any more is not begun.
class X11ScreenCapture : public platform::ScreenCapture {
 public:
    /// For all that one call needs of the X server.
    static constexpr std::chrono::milliseconds limit{2000};
    /// How long memory waits for the next picture.
    static constexpr std::chrono::seconds idleLife{3};

    /// The referents must outlive this object. The error is a sentence for the log.
    static std::expected<std::unique_ptr<X11ScreenCapture>, QString> create(async::MainLoop& loop, platform::Log& log,
                                                                            X11Workspace& workspace);
    ~X11ScreenCapture() override;

    bool preflightAccess() override { return isReadable_ && !connection_->isBroken(); }
    async::Task<std::expected<platform::ShareableContent, platform::CaptureError>> shareableContent() override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureWindow(
        platform::ShareableWindow window) override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureDisplay(
        platform::ShareableDisplay display) override;
    std::shared_ptr<void> expectCapture() override;

 private:
    using Content = std::expected<platform::ShareableContent, platform::CaptureError>;
    using Picture = std::expected<platform::Image, platform::CaptureError>;

    X11ScreenCapture(async::MainLoop& loop, platform::Log& log, X11Workspace& workspace,
                     std::unique_ptr<X11Connection> connection);

    template <typename T>
    async::Task<T> onThread(std::function<T()> work);
    void enqueue(std::function<void()> job);
    void run();

    // On the capturing thread.
    Content findContent(const std::vector<platform::RunningApplication>& applications);
    Picture takeWindow(xcb_window_t window);
    Picture takeDisplay(std::size_t index);
    Picture withCursor(const FetchOutcome& fetched, XDeadline deadline);
    void discardEvents();

    async::MainLoop& loop_;
    X11Workspace& workspace_;
    std::unique_ptr<X11Connection> connection_;
    ScreenGeometry geometry_;
    ScreenPixels pixels_;
    WindowPixels windows_;
    bool hasCursor_ = false;
    bool isReadable_ = false;  ///< whether the screen's pixels are of a known kind

    std::mutex mutex_;  // guards the two fields below
    std::condition_variable changed_;
    std::deque<std::function<void()>> jobs_;
    bool stop_ = false;
    std::thread thread_;
};

}  // namespace tavrelon::desktop
