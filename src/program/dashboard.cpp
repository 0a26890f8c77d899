#include "program/dashboard.h"

#include "desktop/linux/process/settings_panes.h"
#include "ui/dashboard/donation_page.h"
#include "ui/history/history_page.h"
#include "ui/settings/pages.h"
#include "ui/settings/service_pages.h"

namespace tavrelon::program {

namespace {

desktop::NativeKeyNames keyNames(desktop::X11NativeKeys& keys) {
    return {[&keys] { keys.refresh(); },
            [&keys](const desktop::NativeKey& key) {
                return keys.eventOf(static_cast<desktop::KeyCode>(key.code), key.modifiers,
                                    key.isPress ? desktop::KeyAction::Press : desktop::KeyAction::Release,
                                    key.isRepeat);
            }};
}

platform::Permissions permissions(const desktop::AtspiAccessibility& accessibility,
                                  platform::ScreenCapture& screenCapture, platform::AudioInput& audioInput) {
    using enum platform::AuthorizationStatus;
    using desktop::SettingsPane;
    return {{[&accessibility] { return accessibility.isBusReachable() ? Authorized : Denied; },
             [] {
                 desktop::switchAccessibilityOn();
                 desktop::openSettingsPane(SettingsPane::Accessibility);
             }},
            {[&screenCapture] { return screenCapture.preflightAccess() ? Authorized : Denied; },
             [] { desktop::openSettingsPane(SettingsPane::ScreenCapture); }},
            {[&audioInput] { return audioInput.hasDefaultDevice() ? audioInput.authorizationStatus() : Denied; },
             [&audioInput] {
                 audioInput.requestAccess();
                 desktop::openSettingsPane(SettingsPane::Microphone);
             }}};
}

}  // namespace

Dashboard::Dashboard(app::AppState& appState, platform::Platform& platform, Essentials& essentials,
                     const desktop::AtspiAccessibility& accessibility)
    : windows(platform.mainLoop, platform.log),
      keys(keyNames(*essentials.nativeKeys)),
      filePicker(platform.mainLoop),
      window(windows, appState.storageManager(),
             {ui::generalSettingsPage(appState), ui::hotkeysPage(appState, keys, platform.hotkeys),
              ui::clonePage(appState, platform, filePicker), ui::providersPage(appState, platform),
              ui::historyPage(appState),
              ui::privacyPage(appState, permissions(accessibility, platform.screenCapture, platform.audioInput))},
             [&platform] { platform.workspace.openUrl(ui::donationPage()); }) {}

}  // namespace tavrelon::program
