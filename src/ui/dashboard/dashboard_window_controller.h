#pragma once

#include <memory>

#include "platform/window.h"
#include "ui/dashboard/dashboard_model.h"

namespace tavrelon::ui {

/// The one dashboard window: built when it is opened, gone with all its models when the user closes it. Main thread.
class DashboardWindowController {
 public:
    /// The referents outlive this object; `pages` is in the order of the sidebar.
    DashboardWindowController(platform::Windows& windows, persistence::StorageManager& storage,
                              std::vector<DashboardPage> pages, DashboardSurroundings surroundings);
    DashboardWindowController(const DashboardWindowController&) = delete;
    DashboardWindowController& operator=(const DashboardWindowController&) = delete;

    /// Opens the window at the first page, or brings the open one to the front as it is.
    void show();

    bool isOpen() const { return window_ != nullptr; }
    DashboardModel* model() const { return model_.get(); }  ///< null while no window is open

 private:
    void close();

    platform::Windows& windows_;
    persistence::StorageManager& storage_;
    std::vector<DashboardPage> pages_;
    DashboardSurroundings surroundings_;
    std::unique_ptr<DashboardModel> model_;
    std::unique_ptr<platform::Window> window_;
};

}  // namespace tavrelon::ui
