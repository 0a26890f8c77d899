#pragma once

#include "app/app_state.h"

namespace tavrelon::app {

/// The life cycle of the process: what happens once everything is built, and what happens last. Main thread.
class AppDelegate {
 public:
    AppDelegate(platform::Platform& platform, const generation::ServiceEndpoints& endpoints)
        : platform_(platform), appState_(platform, endpoints) {}

    /// A keyboard that cannot be watched is logged; the program goes on without hotkeys.
    void applicationDidFinishLaunching();
    void applicationWillTerminate();

    AppState& appState() { return appState_; }

 private:
    void startHotkeyListener();

    platform::Platform& platform_;
    AppState appState_;
};

}  // namespace tavrelon::app
