// dashboard-bench [IDLE-SECONDS]: opens and closes the dashboard on the display at hand, with real views over services
// that do nothing, and prints what it costs as one JSON document: a list of name, unit and values.
#include <sys/resource.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QTimer>
#include <cstdio>

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

namespace {

using namespace tavrelon;
using namespace std::chrono_literals;
using tavrelon::testing::runQtUntil;

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The proportional share of this process in the machine's memory.
double pssMegabytes() {
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QRegularExpression line(QStringLiteral("^Pss:\\s+(\\d+) kB"), QRegularExpression::MultilineOption);
    return line.match(QString::fromLatin1(file.readAll())).captured(1).toDouble() / 1024;
}

class DashboardBench {
 public:
    void run(int idleSeconds) {
        rest(500ms);
        const double before = pssMegabytes();
        open("dashboard, first opening to first frame");
        rest(1s);
        for (int page = 1; page < static_cast<int>(pages_.size()); ++page)
            change(page, "dashboard, first showing of a page");
        for (int round = 0; round < 20; ++round)
            change(round % static_cast<int>(pages_.size()), "dashboard, change of page");
        note("dashboard, memory open (PSS)", "MB", pssMegabytes());
        idle("dashboard, processor open and idle", idleSeconds);
        window_->showMinimized();
        rest(500ms);
        idle("dashboard, processor minimised", idleSeconds);
        close();
        for (int round = 0; round < 5; ++round) {
            open("dashboard, opening to first frame");
            rest(300ms);
            close();
        }
        rest(1s);
        note("dashboard, memory kept after closing (PSS)", "MB", pssMegabytes() - before);
    }

    text::Json results() const {
        auto list = text::Json::array();
        for (const auto& [name, unit, values] : results_)
            list.push_back({{"name", name}, {"unit", unit}, {"values", values}});
        return list;
    }

 private:
    struct Result {
        std::string name;
        std::string unit;
        std::vector<double> values;
    };

    void note(const char* name, const char* unit, double value) {
        for (auto& result : results_)
            if (result.name == name)
                return result.values.push_back(value);
        results_.push_back({name, unit, {value}});
    }

    static void rest(std::chrono::milliseconds length) {
        QEventLoop turns;
        QTimer::singleShot(length, &turns, [&] { turns.quit(); });
        turns.exec();
    }

    void timeToFrame(const char* name, const std::function<void()>& start) {
        QElapsedTimer timer;
        timer.start();
        start();
        bool shown = false;
        const auto watch = QObject::connect(window_, &QQuickWindow::frameSwapped, window_, [&] { shown = true; });
        runQtUntil([&] { return shown; });
        note(name, "ms", milliseconds(timer));
        QObject::disconnect(watch);
    }

    void open(const char* name) {
        timeToFrame(name, [this] {
            dashboard_.show();
            for (auto* each : QGuiApplication::topLevelWindows())
                if (auto* found = qobject_cast<QQuickWindow*>(each))
                    window_ = found;
        });
        runQtUntil([this] { return window_->isActive(); });
    }

    void change(int page, const char* name) {
        if (dashboard_.model()->selection() != page)
            timeToFrame(name, [&] { dashboard_.model()->select(page); });
        rest(100ms);
    }

    void idle(const char* name, int seconds) {
        const double before = processorSeconds();
        rest(std::chrono::seconds(seconds));
        note(name, "% of a core", 100 * (processorSeconds() - before) / seconds);
    }

    void close() {
        window_->close();
        QElapsedTimer timer;
        timer.start();
        runQtUntil([this] { return !dashboard_.isOpen(); });
        note("dashboard, closing", "ms", milliseconds(timer));
        rest(200ms);
    }

    tavrelon::testing::TestDesktop desktop_;
    app::AppState appState_{desktop_.platform, desktop_.userInterface, generation::ServiceEndpoints::builtIn(),
                            [](const QString&, const auto&) {}};
    tavrelon::testing::FakeRawKeys keys_;
    tavrelon::testing::FakeFilePicker picker_{desktop_.loop};
    desktop::QtMainLoop loop_;
    desktop::StandardOutputLog log_;
    desktop::QtWindows windows_{loop_, log_};
    std::vector<ui::DashboardPage> pages_{ui::generalSettingsPage(appState_, desktop_.platform.httpSession),
                                          ui::hotkeysPage(appState_, keys_, desktop_.keyboard.hotkeys, desktop_.speech),
                                          ui::clonePage(appState_, desktop_.platform, picker_),
                                          ui::providersPage(appState_, desktop_.platform),
                                          ui::historyPage(appState_),
                                          ui::privacyPage(appState_, permissions())};
    ui::DashboardWindowController dashboard_{windows_,
                                             appState_.storageManager(),
                                             pages_,
                                             {[] {}, [this] { return appState_.readiness(); }, appState_.undoOffers()}};
    QQuickWindow* window_ = nullptr;
    std::vector<Result> results_;

    static platform::Permissions permissions() {
        const platform::Permission given{[] { return platform::AuthorizationStatus::Authorized; }, [] {}};
        return {given, given, given};
    }
};

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    DashboardBench bench;
    bench.run(argc > 1 ? std::atoi(argv[1]) : 10);
    std::puts(bench.results().dump().c_str());
    return 0;
}
