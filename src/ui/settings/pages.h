#pragma once

#include "app/app_state.h"
#include "ui/dashboard/dashboard_page.h"

namespace tavrelon::ui {

// The pages of settings, for the window to show. What they refer to outlives the window.
DashboardPage generalSettingsPage(app::AppState& appState);

}  // namespace tavrelon::ui
