#pragma once

#include "app/app_state.h"
#include "desktop/qt/qt_file_picker.h"
#include "desktop/qt/qt_raw_keys.h"
#include "desktop/qt/qt_windows.h"
#include "desktop/session/session_adapters.h"
#include "ui/dashboard/dashboard_window_controller.h"

namespace tavrelon::program {

/// The dashboard and what it needs of this desktop.
struct Dashboard {
    desktop::QtWindows windows;
    desktop::QtRawKeys keys;
    desktop::QtFilePicker filePicker;
    ui::DashboardWindowController window;

    Dashboard(app::AppState& appState, desktop::SessionAdapters& session);
};

}  // namespace tavrelon::program
