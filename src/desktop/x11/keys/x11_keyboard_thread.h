#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "desktop/x11/connection/x11_thread_wake.h"
#include "desktop/x11/keys/x11_keyboard_session.h"

namespace tavrelon::desktop {

/// Runs a session on a thread of its own. All members belong to the main thread, which never waits without bound.
class X11KeyboardThread {
 public:
    X11KeyboardThread(platform::Log& log, std::unique_ptr<X11Connection> connection,
                      std::unique_ptr<X11KeyboardSession> session, std::vector<platform::WantedHotkey> wanted);
    X11KeyboardThread(const X11KeyboardThread&) = delete;
    X11KeyboardThread& operator=(const X11KeyboardThread&) = delete;

    /// Lets go of all keys and ends the thread, within about a second even if the X server does not answer.
    ~X11KeyboardThread();

    /// Hands over the wanted hotkeys and waits until their keys are held, for a quarter of a second at most.
    void declare(std::vector<platform::WantedHotkey> wanted);

    /// Lets the thread look anew at what is wanted, and waits for that as long.
    void applyAnew();

 private:
    void waitUntilApplied(std::unique_lock<std::mutex>& lock);
    void run();
    void applyDeclaration();
    bool stopRequested();
    void waitForWork();

    platform::Log& log_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11KeyboardSession> session_;  ///< of the thread
    X11ThreadWake wake_;

    std::mutex mutex_;  // guards the fields below
    std::condition_variable changed_;
    std::vector<platform::WantedHotkey> wanted_;
    int declarationsAsked_ = 0;
    int declarationsApplied_ = 0;
    bool stop_ = false;
    bool ended_ = false;

    std::thread thread_;
};

}  // namespace tavrelon::desktop
