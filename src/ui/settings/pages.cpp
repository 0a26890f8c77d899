#include "ui/settings/pages.h"

#include "ui/settings/general_settings_model.h"

namespace tavrelon::ui {

DashboardPage generalSettingsPage(app::AppState& appState) {
    return {DashboardTab::settings, QStringLiteral("settings/GeneralSettingsScrollView"), [&appState] {
                return std::make_unique<GeneralSettingsModel>(appState.storageManager(),
                                                              appState.pollinationsService());
            }};
}

}  // namespace tavrelon::ui
