#include "desktop/x11/keys/x11_keyboard_thread.h"

#include <poll.h>

#include <array>

namespace tavrelon::desktop {

namespace {

constexpr std::chrono::minutes lookAnyway{5};

}  // namespace

X11KeyboardThread::X11KeyboardThread(platform::Log& log, std::unique_ptr<X11Connection> connection,
                                     std::unique_ptr<X11KeyboardSession> session,
                                     std::vector<platform::WantedHotkey> wanted)
    : log_(log),
      connection_(std::move(connection)),
      session_(std::move(session)),
      wanted_(std::move(wanted)),
      thread_([this] { run(); }) {}

X11KeyboardThread::~X11KeyboardThread() {
    {
        std::unique_lock lock(mutex_);
        stop_ = true;
        wake_.signal();
        if (!changed_.wait_for(lock, std::chrono::seconds(1), [this] { return ended_; }))
            connection_->breakOff();
    }
    thread_.join();
}

void X11KeyboardThread::declare(std::vector<platform::WantedHotkey> wanted) {
    std::unique_lock lock(mutex_);
    wanted_ = std::move(wanted);
    waitUntilApplied(lock);
}

void X11KeyboardThread::applyAnew() {
    std::unique_lock lock(mutex_);
    waitUntilApplied(lock);
}

void X11KeyboardThread::waitUntilApplied(std::unique_lock<std::mutex>& lock) {
    const int asked = ++declarationsAsked_;
    wake_.signal();
    changed_.wait_for(lock, std::chrono::milliseconds(250), [&] { return ended_ || declarationsApplied_ >= asked; });
}

void X11KeyboardThread::applyDeclaration() {
    std::unique_lock lock(mutex_);
    if (declarationsApplied_ == declarationsAsked_)
        return;
    const int asked = declarationsAsked_;
    const auto wanted = wanted_;
    lock.unlock();
    session_->declare(wanted);
    session_->work();
    lock.lock();
    declarationsApplied_ = asked;
    changed_.notify_all();
}

bool X11KeyboardThread::stopRequested() {
    const std::lock_guard lock(mutex_);
    return stop_;
}

void X11KeyboardThread::run() {
    while (!stopRequested()) {
        session_->work();  // what was struck before a declaration is judged by the one before
        applyDeclaration();
        if (connection_->isBroken()) {
            log_.line(QStringLiteral("[Hotkey] The X server is gone: hotkeys are off"));
            break;
        }
        waitForWork();
    }
    session_.reset();
    connection_->sync();  // all keys are free before the end is told
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
}

void X11KeyboardThread::waitForWork() {
    std::array<pollfd, 2> sources{
        {{xcb_get_file_descriptor(connection_->get()), POLLIN, 0}, {wake_.descriptor(), POLLIN, 0}}};
    // Now and then, or what nobody waits for would pile up under somebody who needs no modifiers, as in a game.
    ::poll(sources.data(), sources.size(), static_cast<int>(std::chrono::milliseconds(lookAnyway).count()));
    wake_.clear();
}

}  // namespace tavrelon::desktop
