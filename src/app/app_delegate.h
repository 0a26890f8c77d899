#pragma once

#include "app/app_state.h"

namespace tavrelon::app {

/// The life cycle of the process: what happens once everything is built, and what happens last. Owns the status item's
/// image and menu. Main thread.
class AppDelegate {
 public:
    /// What the user sees of a launch.
    enum class Launch { WithDashboard, InBackground };

    AppDelegate(platform::Platform& platform, platform::UserInterface& userInterface,
                const generation::ServiceEndpoints& endpoints);

    /// What opens the dashboard window, or brings it to the front. Set before the launch by who owns that window;
    /// without it there is no dashboard, and the menu does not offer one.
    std::function<void()> showDashboard;

    /// A keyboard that cannot be watched is logged; the program goes on without hotkeys.
    void applicationDidFinishLaunching(Launch launch = Launch::WithDashboard);
    void applicationWillTerminate();

    /// Before and after the process is stopped: a stopped program holds no keys and records nothing. A request that
    /// runs goes on afterwards.
    void suspend();
    void resume();

    void openDashboard();
    void openHistory() { openDashboard(); }
    void openAbout();
    void quitApp();
    /// The tray's tool tip says `reason`, if there is one.
    void setStatusIcon(const QString& symbolName, const std::optional<QString>& reason = std::nullopt);

    AppState& appState() { return appState_; }

 private:
    void setupStatusItem();
    void offerMenu();
    void startHotkeyListener();

    platform::Platform& platform_;
    platform::UserInterface& userInterface_;
    AppState appState_;
    std::optional<text::Language> menuLanguage_;
    persistence::ChangeSubscription settingsSubscription_;
};

}  // namespace tavrelon::app
