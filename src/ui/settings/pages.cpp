#include "ui/settings/pages.h"

#include "ui/settings/general_settings_model.h"
#include "ui/settings/hotkeys_settings_model.h"
#include "ui/settings/privacy_settings_model.h"

namespace tavrelon::ui {

DashboardPage generalSettingsPage(app::AppState& appState, platform::HttpSession& session) {
    return {DashboardTab::settings, QStringLiteral("settings/GeneralSettingsScrollView"), [&appState, &session] {
                return std::make_unique<GeneralSettingsModel>(
                    FoundServers::Services{appState.mainLoop(), appState.storageManager(),
                                           appState.pollinationsService(), session},
                    [&appState] { appState.adaptivePromptLearner().forget(); });
            }};
}

DashboardPage hotkeysPage(app::AppState& appState, platform::RawKeys& keys, platform::Hotkeys& desktop,
                          platform::Speech& speech) {
    return {DashboardTab::hotkeys, QStringLiteral("settings/HotkeysSettingsView"),
            [&appState, &keys, &desktop, &speech] {
                return std::make_unique<HotkeysSettingsModel>(HotkeysSettingsModel::Services{
                    appState.mainLoop(), appState.storageManager(), appState.hotkeyManager(), keys,
                    [&appState](bool enabled) { appState.hotkeyStatusHUDController().show(enabled); }, desktop, speech,
                    appState.undoOffers()});
            }};
}

DashboardPage privacyPage(app::AppState& appState, platform::Permissions permissions) {
    return {DashboardTab::privacy, QStringLiteral("settings/PrivacySettingsView"), [&appState, permissions] {
                return std::make_unique<PrivacySettingsModel>(appState.storageManager(), permissions,
                                                              appState.serviceConsent());
            }};
}

}  // namespace tavrelon::ui
