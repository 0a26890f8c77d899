#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickView>
#include <QTemporaryDir>

#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_view_engine.h"
#include "persistence/history_manager.h"
#include "ui/history/history_model.h"

namespace tavrelon::bench {
namespace {

class NoLog : public platform::Log {
 public:
    void line(const QString&) override {}
};

const auto pictureName = QStringLiteral("history-images/00000000-0000-0000-0000-000000000001.jpg");

persistence::HistoryEntry longEntry(int index) {
    return {.id = QUuid::createUuid(),
            .timestamp = std::chrono::system_clock::now() + std::chrono::minutes(index),
            .appName = QStringLiteral("Editor"),
            .inputText = QStringLiteral("please make this paragraph friendlier ").repeated(40),
            .outputText =
                QStringLiteral("Here is a friendlier paragraph — 更友好的段落, with thanks to all.\n").repeated(300),
            .outputImagePath = index % 5 == 0 ? std::optional(pictureName) : std::nullopt};
}

/// The page of a full history of long entries, with the conversation open.
struct Page {
    QTemporaryDir folder;
    desktop::PosixFileSystem files;
    NoLog log;
    desktop::QtMainLoop loop;
    desktop::DirectoryDefaultsStore defaults{files, log, folder.path()};
    persistence::StorageManager storage{defaults, files, log, loop, folder.path()};
    persistence::HistoryManager history{files, log, folder.path(), 20};
    std::unique_ptr<QQmlEngine> engine = desktop::makeViewEngine(log);
    std::unique_ptr<ui::HistoryModel> model;
    QQuickView view{engine.get(), nullptr};

    Page() {
        QImage(4000, 3000, QImage::Format_RGB32).save(folder.filePath(pictureName));
        for (int index = 0; index < 20; ++index)
            history.addEntry(longEntry(index));
        model = std::make_unique<ui::HistoryModel>(storage, history, [] {});
        model->selectApp(QStringLiteral("Editor"));
        view.setResizeMode(QQuickView::SizeRootObjectToView);
        view.resize(712, 540);
        view.setInitialProperties({{QStringLiteral("model"), QVariant::fromValue<QObject*>(model.get())}});
        view.setSource(desktop::viewUrl(QStringLiteral("history/HistoryView")));
        view.show();
        view.grabWindow();
    }
    QQuickItem* conversation() const {
        return view.rootObject()->findChild<QQuickItem*>(QStringLiteral("conversation"));
    }
};

/// The longest time that one step of a quick scroll takes, with all of the window drawn anew.
void scrollHistory(benchmark::State& state) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    static int argumentCount = 0;
    // Never destroyed: at the end of the process the toolkit's own parts would go before it.
    static const auto* const application = new QGuiApplication(argumentCount, nullptr);
    benchmark::DoNotOptimize(application);
    Page page;
    auto* list = page.conversation();
    for (auto _ : state) {
        std::chrono::nanoseconds worst{0};
        for (int step = 0; step < 100; ++step) {
            const auto begin = std::chrono::steady_clock::now();
            list->setProperty("contentY", list->property("contentY").toReal() + 120);
            page.view.grabWindow();
            worst = std::max(worst, std::chrono::steady_clock::now() - begin);
            QCoreApplication::processEvents();
        }
        if (list->property("contentY").toReal() < 100 * 120 || list->property("contentHeight").toReal() < 100 * 120)
            state.SkipWithError("the conversation did not scroll");
        state.SetIterationTime(std::chrono::duration<double>(worst).count());
    }
}
BENCHMARK(scrollHistory)
    ->Name("history of 20 long entries scrolled, longest frame")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);

}  // namespace
}  // namespace tavrelon::bench
