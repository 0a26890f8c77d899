#pragma once

#include "app/app_state.h"
#include "platform/hotkeys.h"
#include "platform/permissions.h"
#include "platform/raw_keys.h"
#include "platform/speech.h"
#include "ui/dashboard/dashboard_page.h"

namespace tavrelon::ui {

// The pages of settings, for the window to show. What they refer to outlives the window.
DashboardPage generalSettingsPage(app::AppState& appState, platform::HttpSession& session);
DashboardPage hotkeysPage(app::AppState& appState, platform::RawKeys& keys, platform::Hotkeys& desktop,
                          platform::Speech& speech);
DashboardPage privacyPage(app::AppState& appState, platform::Permissions permissions);

}  // namespace tavrelon::ui
