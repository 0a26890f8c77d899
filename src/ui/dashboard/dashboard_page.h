#pragma once

#include <array>
#include <functional>
#include <memory>

#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// The pages of the dashboard, in the order of the sidebar.
enum class DashboardTab { settings, hotkeys, clone, providers, history, privacy };

struct DashboardTabLook {
    DashboardTab tab;
    QStringView english;
    QStringView chinese;
    QStringView symbol;
};

inline constexpr std::array<DashboardTabLook, 6> dashboardTabs{{
    {DashboardTab::settings, u"Settings", u"设置", u"bolt.fill"},
    {DashboardTab::hotkeys, u"Hotkeys", u"快捷键", u"keyboard.fill"},
    {DashboardTab::clone, u"Clone", u"克隆", u"person.crop.circle.badge.plus"},
    {DashboardTab::providers, u"Providers", u"服务提供商", u"square.stack.3d.up.fill"},
    {DashboardTab::history, u"History", u"历史记录", u"clock.fill"},
    {DashboardTab::privacy, u"Permissions", u"权限", u"shield.fill"},
}};

/// What fills the window while its tab is selected. The view is the name of a QML file below the resources of the user
/// interface, as "settings/GeneralSettingsScrollView"; its root has `required property QtObject model` and gets the
/// model, which is made when the tab is first selected and lives until the window closes.
struct DashboardPage {
    DashboardTab tab;
    QString view;
    std::function<std::unique_ptr<PageModel>()> makeModel;
};

}  // namespace tavrelon::ui
