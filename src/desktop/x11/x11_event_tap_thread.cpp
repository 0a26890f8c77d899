#include "desktop/x11/x11_event_tap_thread.h"

#include <poll.h>

#include <algorithm>
#include <array>

namespace tavrelon::desktop {

X11TapThread::X11TapThread(async::MainLoop& loop, platform::Log& log, std::unique_ptr<X11Connection> connection,
                           std::unique_ptr<X11TapSession> session, std::shared_ptr<X11ThreadWake> wake)
    : loop_(loop),
      log_(log),
      connection_(std::move(connection)),
      session_(std::move(session)),
      wake_(std::move(wake)),
      thread_([this] { run(); }) {}

X11TapThread::~X11TapThread() {
    {
        std::unique_lock lock(mutex_);
        stop_ = true;
        wake_->signal();
        if (!changed_.wait_for(lock, std::chrono::seconds(1), [this] { return ended_; }))
            connection_->breakOff();
    }
    thread_.join();
}

void X11TapThread::setHotkeys(std::vector<keys::HotkeyConfig> hotkeys) {
    std::unique_lock lock(mutex_);
    hotkeys_ = std::move(hotkeys);
    const int asked = ++hotkeysAsked_;
    wake_->signal();
    changed_.wait_for(lock, std::chrono::milliseconds(250), [&] { return ended_ || hotkeysApplied_ >= asked; });
}

void X11TapThread::applyHotkeys() {
    std::unique_lock lock(mutex_);
    if (hotkeysApplied_ == hotkeysAsked_)
        return;
    const int asked = hotkeysAsked_;
    auto hotkeys = hotkeys_;
    lock.unlock();
    session_->setHotkeys(std::move(hotkeys));
    lock.lock();
    hotkeysApplied_ = asked;
    changed_.notify_all();
}

bool X11TapThread::stopRequested() {
    const std::lock_guard lock(mutex_);
    return stop_;
}

void X11TapThread::run() {
    while (!stopRequested()) {
        applyHotkeys();
        session_->work();
        if (connection_->isBroken()) {
            log_.line(QStringLiteral("[Hotkey] The X server is gone: hotkeys are off"));
            break;
        }
        waitForWork();
    }
    session_.reset();
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
}

void X11TapThread::waitForWork() {
    std::array<pollfd, 2> sources{
        {{xcb_get_file_descriptor(connection_->get()), POLLIN, 0}, {wake_->descriptor(), POLLIN, 0}}};
    int timeout = -1;
    if (const auto deadline = session_->deadline()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - loop_.now());
        timeout = static_cast<int>(std::max(left, std::chrono::milliseconds::zero()).count());
    }
    ::poll(sources.data(), sources.size(), timeout);
    wake_->clear();
}

}  // namespace tavrelon::desktop
