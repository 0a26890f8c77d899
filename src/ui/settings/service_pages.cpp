#include "ui/settings/service_pages.h"

#include "ui/settings/clone_settings_model.h"
#include "ui/settings/provider_settings_model.h"

namespace tavrelon::ui {

DashboardPage clonePage(app::AppState& appState, platform::Platform& platform, platform::FilePicker& filePicker) {
    auto& loop = platform.mainLoop;
    auto learner = std::make_shared<CloneLearner>(
        CloneLearner::Services{loop, appState.storageManager(), appState.cloneService()});
    return {DashboardTab::clone, QStringLiteral("settings/CloneSettingsView"), [&, learner = std::move(learner)] {
                return std::make_unique<CloneSettingsModel>(loop, appState.storageManager(), *learner, filePicker);
            }};
}

DashboardPage providersPage(app::AppState& appState, platform::Platform& platform) {
    return {DashboardTab::providers, QStringLiteral("settings/ProviderSettingsView"), [&] {
                return std::make_unique<ProviderSettingsModel>(ProviderSettingsModel::Services{
                    platform.mainLoop, appState.storageManager(), appState.pollinationsService(), platform.workspace,
                    platform.httpSession});
            }};
}

}  // namespace tavrelon::ui
