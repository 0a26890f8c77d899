#include <benchmark/benchmark.h>
#include <QTemporaryDir>

#include "desktop/linux/files/posix_file_system.h"
#include "persistence/history_manager.h"

namespace tavrelon::bench {
namespace {

class NoLog : public platform::Log {
 public:
    void line(const QString&) override {}
};

constexpr int fullHistory = 20;

persistence::HistoryEntry entry() {
    return {.id = QUuid::createUuid(),
            .timestamp = std::chrono::system_clock::now(),
            .appName = QStringLiteral("Editor"),
            .windowTitle = QStringLiteral("notes.txt"),
            .inputText = QStringLiteral("please make this paragraph friendlier ").repeated(4),
            .outputText = QStringLiteral("Here is a friendlier paragraph, with thanks to all. ").repeated(190)};
}

struct FullHistory {
    QTemporaryDir folder;
    desktop::PosixFileSystem files;
    NoLog log;
    persistence::HistoryManager history{files, log, folder.path(), fullHistory};

    FullHistory() {
        for (int index = 0; index < fullHistory; ++index)
            history.addEntry(entry());
    }
};

/// One more entry in a full history, written to the disk of the temporary folder and flushed.
void addToHistory(benchmark::State& state) {
    FullHistory full;
    for (auto _ : state)
        full.history.addEntry(entry());
}
BENCHMARK(addToHistory)->Name("history add at 20 entries of 10 KB, on disk")->Unit(benchmark::kMicrosecond);

void styleProfile(benchmark::State& state) {
    FullHistory full;
    for (auto _ : state)
        benchmark::DoNotOptimize(full.history.userStyleProfile(fullHistory));
}
BENCHMARK(styleProfile)->Name("style profile over 20 entries of 10 KB")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrelon::bench
