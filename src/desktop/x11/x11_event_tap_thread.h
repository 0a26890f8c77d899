#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "desktop/x11/x11_event_tap_session.h"

namespace tavrelon::desktop {

/// Runs a session on a thread of its own. All members belong to the main thread, which never waits without bound.
class X11TapThread {
 public:
    X11TapThread(async::MainLoop& loop, platform::Log& log, std::unique_ptr<X11Connection> connection,
                 std::unique_ptr<X11TapSession> session, std::shared_ptr<X11ThreadWake> wake);
    X11TapThread(const X11TapThread&) = delete;
    X11TapThread& operator=(const X11TapThread&) = delete;

    /// Lets go of all keys and ends the thread, within about a second even if the X server does not answer.
    ~X11TapThread();

    /// Hands over new hotkeys and waits until their keys are held, for a quarter of a second at most.
    void setHotkeys(std::vector<keys::HotkeyConfig> hotkeys);

 private:
    void run();
    void applyHotkeys();
    bool stopRequested();
    void waitForWork();

    async::MainLoop& loop_;
    platform::Log& log_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11TapSession> session_;  ///< of the thread
    std::shared_ptr<X11ThreadWake> wake_;

    std::mutex mutex_;  // guards the fields below
    std::condition_variable changed_;
    std::vector<keys::HotkeyConfig> hotkeys_;
    int hotkeysAsked_ = 0;
    int hotkeysApplied_ = 0;
    bool stop_ = false;
    bool ended_ = false;

    std::thread thread_;
};

}  // namespace tavrelon::desktop
