#include "program/dashboard.h"

#include "desktop/linux/process/settings_panes.h"
#include "ui/dashboard/donation_page.h"
#include "ui/history/history_page.h"
#include "ui/settings/pages.h"
#include "ui/settings/service_pages.h"

namespace tavrelon::program {

namespace {

platform::Permissions permissions(desktop::SessionAdapters& session) {
    auto& audioInput = session.audioInput;
    using enum platform::AuthorizationStatus;
    using desktop::SettingsPane;
    return {{[&session] { return session.accessibility.isBusReachable() ? Authorized : Denied; },
             [] {
                 desktop::switchAccessibilityOn();
                 desktop::openSettingsPane(SettingsPane::Accessibility);
             }},
            {[&session] { return session.platform.screenCapture.preflightAccess() ? Authorized : Denied; },
             [] { desktop::openSettingsPane(SettingsPane::ScreenCapture); }},
            {[&audioInput] { return audioInput.hasDefaultDevice() ? audioInput.authorizationStatus() : Denied; },
             [&audioInput] {
                 audioInput.requestAccess();
                 desktop::openSettingsPane(SettingsPane::Microphone);
             }},
            session.windowing.shellExtension};
}

/// Opens the page for donations; null where none is configured.
std::function<void()> donationLink(platform::Workspace& workspace) {
    if (ui::donationPage().isEmpty())
        return {};
    return [&workspace] { workspace.openUrl(ui::donationPage()); };
}

}  // namespace

Dashboard::Dashboard(app::AppState& appState, desktop::SessionAdapters& session)
    : windows(session.platform.mainLoop, session.platform.log),
      keys(session.windowing.keyNames),
      filePicker(session.platform.mainLoop),
      window(windows, appState.storageManager(),
             {ui::generalSettingsPage(appState, session.platform.httpSession),
              ui::hotkeysPage(appState, keys, session.platform.hotkeys, session.platform.speech),
              ui::clonePage(appState, session.platform, filePicker), ui::providersPage(appState, session.platform),
              ui::historyPage(appState), ui::privacyPage(appState, permissions(session))},
             {donationLink(session.platform.workspace), [&appState] { return appState.readiness(); },
              appState.undoOffers()}) {}

}  // namespace tavrelon::program
