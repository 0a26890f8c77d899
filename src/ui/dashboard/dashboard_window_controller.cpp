#include "ui/dashboard/dashboard_window_controller.h"

namespace tavrelon::ui {

namespace {

constexpr QSizeF contentSize{800, 600};
constexpr QSizeF minimumSize{720, 480};

}  // namespace

DashboardWindowController::DashboardWindowController(platform::Windows& windows, persistence::StorageManager& storage,
                                                     std::vector<DashboardPage> pages,
                                                     DashboardSurroundings surroundings)
    : windows_(windows), storage_(storage), pages_(std::move(pages)), surroundings_(std::move(surroundings)) {}

void DashboardWindowController::show() {
    if (!window_) {
        model_ = std::make_unique<DashboardModel>(storage_, pages_, surroundings_);
        window_ = windows_.create({contentSize, minimumSize, QStringLiteral("dashboard/DashboardView"), model_.get()},
                                  [this] { close(); });
    }
    window_->makeKeyAndOrderFront();
}

void DashboardWindowController::close() {
    window_.reset();
    model_.reset();
}

}  // namespace tavrelon::ui
