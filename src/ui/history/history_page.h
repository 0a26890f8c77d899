#pragma once

#include "app/app_state.h"
#include "ui/dashboard/dashboard_page.h"

namespace tavrelon::ui {

/// The page of the history, for the window to show. `appState` outlives the window.
DashboardPage historyPage(app::AppState& appState);

}  // namespace tavrelon::ui
