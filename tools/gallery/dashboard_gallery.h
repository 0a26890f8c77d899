#pragma once

#include <QDir>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>

#include "app/app_state.h"
#include "desktop/linux/process/standard_output_log.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_windows.h"
#include "support/fake_file_picker.h"
#include "support/fake_raw_keys.h"
#include "support/run_task_on_qt.h"
#include "support/test_desktop.h"
#include "ui/dashboard/dashboard_window_controller.h"
#include "ui/history/history_page.h"
#include "ui/settings/pages.h"
#include "ui/settings/service_pages.h"

namespace tavrelon::testing {

/// The dashboard with real views over a desktop of fakes, opened anew for each picture.
class DashboardGallery {
 public:
    /// What is done to the open window before its picture is taken.
    using Preparation = std::function<void(DashboardGallery&)>;

    explicit DashboardGallery(QDir folder) : folder_(std::move(folder)) {}

    QTemporaryDir files;  ///< views read pictures from the disk
    TestDesktop desktop;
    app::AppState appState{keepingFilesIn(files, desktop), desktop.userInterface,
                           generation::ServiceEndpoints::builtIn(), [](const QString&, const auto&) {}};
    app::Readiness readiness = app::Readiness::active;
    FakeRawKeys keys;
    FakeFilePicker picker{desktop.loop};
    platform::AuthorizationStatus permission = platform::AuthorizationStatus::Denied;
    desktop::QtMainLoop loop;
    desktop::StandardOutputLog log;
    desktop::QtWindows windows{loop, log};
    std::vector<ui::DashboardPage> pages{ui::generalSettingsPage(appState, desktop.platform.httpSession),
                                         ui::hotkeysPage(appState, keys, desktop.keyboard.hotkeys, desktop.speech),
                                         ui::clonePage(appState, desktop.platform, picker),
                                         ui::providersPage(appState, desktop.platform),
                                         ui::historyPage(appState),
                                         ui::privacyPage(appState, permissions())};
    ui::DashboardWindowController dashboard{
        windows, appState.storageManager(), pages, {{}, [this] { return readiness; }, appState.undoOffers()}};

    /// One picture in each language, as <name>-<language>.png.
    void picture(const QString& name, ui::DashboardTab tab, const Preparation& prepare = [](DashboardGallery&) {}) {
        for (const auto* language : {"en", "zh"}) {
            change([&](auto& settings) { settings.appLanguage = QString::fromLatin1(language); });
            dashboard.show();
            const auto page = std::ranges::find(pages, tab, &ui::DashboardPage::tab);
            dashboard.model()->select(static_cast<int>(page - pages.begin()));
            prepare(*this);
            settle();
            const auto file = QStringLiteral("%1-%2.png").arg(name, QString::fromLatin1(language));
            window()->grabWindow().save(folder_.filePath(file));
            window()->close();
            runQtUntil([this] { return !dashboard.isOpen(); });
        }
    }

    QQuickWindow* window() const {
        for (auto* each : QGuiApplication::topLevelWindows())
            if (auto* found = qobject_cast<QQuickWindow*>(each); found && found->isVisible())
                return found;
        throw std::runtime_error("there is no window");
    }

    template <typename Change>
    void change(Change change) {
        appState.storageManager().changeSettings(change);
    }

    /// The model of the page that is shown.
    template <typename Model>
    Model& page() {
        return dynamic_cast<Model&>(*dashboard.model()->pageModel());
    }

    /// Strikes Tab so many times.
    void tab(int times) {
        settle();
        for (; times > 0; --times)
            for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                QKeyEvent event(type, Qt::Key_Tab, Qt::NoModifier);
                QCoreApplication::sendEvent(window(), &event);
            }
    }

    /// Moves the mouse to a place in the window, in points.
    void hover(QPointF place) {
        settle();
        QMouseEvent event(QEvent::MouseMove, place, window()->mapToGlobal(place), Qt::NoButton, Qt::NoButton, {});
        QCoreApplication::sendEvent(window(), &event);
    }

    /// Scrolls the page to its end.
    void scrollDown() {
        settle();
        for (auto* item : window()->contentItem()->findChildren<QQuickItem*>())
            if (item->inherits("QQuickFlickable") && item->isVisible())
                item->setProperty("contentY",
                                  std::max(0.0, item->property("contentHeight").toDouble() - item->height()));
    }

    void settle(std::chrono::milliseconds length = std::chrono::milliseconds(250)) {
        const auto end = std::chrono::steady_clock::now() + length;
        runQtUntil([&] {
            desktop.loop.runUntilIdle();
            return std::chrono::steady_clock::now() >= end;
        });
    }

 private:
    static platform::Platform& keepingFilesIn(const QTemporaryDir& folder, TestDesktop& desktop) {
        desktop.platform.applicationSupport = folder.path();
        return desktop.platform;
    }
    platform::Permissions permissions() {
        const platform::Permission shown{[this] { return permission; }, [] {}};
        return {shown, shown, shown, shown};
    }

    QDir folder_;
};

}  // namespace tavrelon::testing
