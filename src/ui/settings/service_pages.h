#pragma once

#include "app/app_state.h"
#include "platform/file_picker.h"
#include "platform/platform.h"
#include "ui/dashboard/dashboard_page.h"

namespace tavrelon::ui {

// The pages that set up services, for the window to show. What they refer to outlives the window. A learning that the
// clone page began goes on when the window is closed, for as long as the page itself is kept.
DashboardPage clonePage(app::AppState& appState, platform::Platform& platform, platform::FilePicker& filePicker);
DashboardPage providersPage(app::AppState& appState, platform::Platform& platform);

}  // namespace tavrelon::ui
