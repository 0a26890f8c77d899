#include "desktop/x11/screen/x11_screen_capture.h"

#include <xcb/xfixes.h>

#include "async/waits.h"
#include "desktop/x11/screen/x11_pixel_layout.h"
#include "desktop/x11/screen/x11_screen_cursor.h"

namespace tavrelon::desktop {

using platform::CaptureError;
using platform::ShareableContent;
using platform::ShareableDisplay;
using platform::ShareableWindow;

namespace {

XDeadline deadlineFromNow() {
    return std::chrono::steady_clock::now() + X11ScreenCapture::limit;
}

CaptureError error(const char* text) {
    return {QString::fromUtf8(text)};
}

}  // namespace

std::expected<std::unique_ptr<X11ScreenCapture>, QString> X11ScreenCapture::create(async::MainLoop& loop,
                                                                                   platform::Log& log,
                                                                                   X11Workspace& workspace) {
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(connection.error());
    return std::unique_ptr<X11ScreenCapture>(new X11ScreenCapture(loop, log, workspace, *std::move(connection)));
}

X11ScreenCapture::X11ScreenCapture(async::MainLoop& loop, platform::Log& log, X11Workspace& workspace,
                                   std::unique_ptr<X11Connection> connection)
    : loop_(loop),
      workspace_(workspace),
      connection_(std::move(connection)),
      geometry_(connection_->get(), connection_->root()),
      pixels_(connection_->get()),
      windows_(connection_->get(), connection_->root(), geometry_, pixels_) {
    const auto* fixes = xcb_get_extension_data(connection_->get(), &xcb_xfixes_id);
    hasCursor_ =
        fixes && fixes->present &&
        awaitXReply<xcb_xfixes_query_version_reply_t>(
            connection_->get(), xcb_xfixes_query_version(connection_->get(), 2, 0).sequence, deadlineFromNow());
    const int depth = xcb_setup_roots_iterator(xcb_get_setup(connection_->get())).data->root_depth;
    isReadable_ = pixelLayout(connection_->get(), static_cast<std::uint8_t>(depth)).has_value();
    if (!isReadable_)
        log.line(QStringLiteral("[Desktop] The screen's pixels of %1 bits are not known; there are no screenshots")
                     .arg(depth));
    if (!windows_.canUncover())
        log.line(
            QStringLiteral("[Desktop] The X server lacks the Composite extension; "
                           "screenshots of a window show what covers it"));
    thread_ = std::thread([this] { run(); });
}

X11ScreenCapture::~X11ScreenCapture() {
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    changed_.notify_all();
    connection_->breakOff();
    thread_.join();
}

void X11ScreenCapture::run() {
    const auto isWanted = [this] { return stop_ || !jobs_.empty(); };
    std::unique_lock lock(mutex_);
    for (;;) {
        if (pixels_.sharesMemory() && !changed_.wait_for(lock, idleLife, isWanted)) {
            lock.unlock();
            pixels_.endSharing();
            lock.lock();
        }
        changed_.wait(lock, isWanted);
        if (stop_)
            return;
        const auto job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        discardEvents();
        job();
        lock.lock();
    }
}

void X11ScreenCapture::enqueue(std::function<void()> job) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    changed_.notify_all();
}

template <typename T>
async::Task<T> X11ScreenCapture::onThread(std::function<T()> work) {
    // The thread skips the work once this is gone, which a cancellation sees to.
    co_return co_await async::fromCallback<T>(loop_, [this, &work](auto resolver) {
        auto wanted = std::make_shared<bool>(true);
        enqueue([resolver, work, stillWanted = std::weak_ptr(wanted)]() mutable {
            if (!stillWanted.expired())
                resolver.resolve(work());
        });
        return wanted;
    });
}

async::Task<X11ScreenCapture::Content> X11ScreenCapture::shareableContent() {
    co_return co_await onThread<Content>(
        [this, applications = workspace_.applicationsFromFront()] { return findContent(applications); });
}

async::Task<X11ScreenCapture::Picture> X11ScreenCapture::captureWindow(ShareableWindow window) {
    co_return co_await onThread<Picture>(
        [this, identifier = static_cast<xcb_window_t>(window.identifier)] { return takeWindow(identifier); });
}

async::Task<X11ScreenCapture::Picture> X11ScreenCapture::captureDisplay(ShareableDisplay display) {
    co_return co_await onThread<Picture>(
        [this, index = static_cast<std::size_t>(display.identifier)] { return takeDisplay(index); });
}

std::shared_ptr<void> X11ScreenCapture::expectCapture() {
    const auto application = workspace_.frontmostApplication();
    if (!application)
        return nullptr;
    auto apart = std::make_shared<std::shared_ptr<void>>();  // of the capturing thread
    enqueue([this, apart, window = static_cast<xcb_window_t>(application->windowIdentifier)] {
        const auto deadline = deadlineFromNow();
        if (const auto frame = geometry_.frameOf(window, deadline); frame && frame->isViewable)
            *apart = windows_.drawApart(*frame, deadline);
    });
    return {this, [apart](X11ScreenCapture* self) { self->enqueue([apart] { apart->reset(); }); }};
}

X11ScreenCapture::Content X11ScreenCapture::findContent(const std::vector<platform::RunningApplication>& applications) {
    const auto deadline = deadlineFromNow();
    ShareableContent content;
    const auto monitors = geometry_.monitors(deadline);
    if (monitors.empty())
        return std::unexpected(error("The X server does not tell its displays."));
    for (std::size_t i = 0; i < monitors.size(); ++i)
        content.displays.push_back({.identifier = i, .width = monitors[i].width, .height = monitors[i].height});
    for (const auto& application : applications) {
        const auto frame = geometry_.frameOf(static_cast<xcb_window_t>(application.windowIdentifier), deadline);
        if (!frame || frame->area.isEmpty())
            continue;
        content.windows.push_back({.identifier = application.windowIdentifier,
                                   .bundleIdentifier = application.bundleIdentifier,
                                   .isOnScreen = frame->isViewable,
                                   .width = frame->area.width,
                                   .height = frame->area.height});
    }
    return content;
}

X11ScreenCapture::Picture X11ScreenCapture::takeWindow(xcb_window_t window) {
    const auto deadline = deadlineFromNow();
    const auto frame = geometry_.frameOf(window, deadline);
    if (!frame || !frame->isViewable)
        return std::unexpected(error("The window is no longer on the screen."));
    return withCursor(windows_.fetch(*frame, deadline), deadline);
}

X11ScreenCapture::Picture X11ScreenCapture::takeDisplay(std::size_t index) {
    const auto deadline = deadlineFromNow();
    const auto monitors = geometry_.monitors(deadline);
    if (index >= monitors.size())
        return std::unexpected(error("The display is no longer there."));
    const auto& area = monitors[index];
    const auto shown = area.intersected(geometry_.screen(deadline));
    return withCursor(pixels_.fetch(connection_->root(), shown, deadline), deadline);
}

X11ScreenCapture::Picture X11ScreenCapture::withCursor(const FetchOutcome& fetched, XDeadline deadline) {
    if (!fetched)
        return std::unexpected(fetched.error());
    if (const auto cursor = hasCursor_ ? cursorNow(connection_->get(), deadline) : std::nullopt)
        drawCursor(*fetched, *cursor);
    return fetched->image();
}

void X11ScreenCapture::discardEvents() {
    while (const XPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
    }
}

}  // namespace tavrelon::desktop
