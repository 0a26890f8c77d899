#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/process/thread_serial_queue.h"
#include "learning/adaptive_prompt_learner.h"

namespace tavrelon::bench {
namespace {

class NoLog : public platform::Log {
 public:
    void line(const QString&) override {}
};

/// Nothing is due here, so that what is posted or sent goes nowhere.
class StillLoop : public async::MainLoop {
 public:
    void post(Block) override {}
    async::Timer after(std::chrono::nanoseconds, Block) override { return {}; }
    async::Instant now() const override { return std::chrono::steady_clock::now(); }
    std::chrono::system_clock::time_point wallTime() const override { return std::chrono::system_clock::now(); }
};

class NoNetwork : public platform::HttpSession {
 public:
    async::Task<std::expected<platform::HttpResponse, platform::HttpError>> send(platform::HttpRequest) override {
        co_return std::unexpected(platform::HttpError{});
    }
};

/// What a request waits for when its text is recorded; the cleaning and the write happen on the learner's thread.
void recordSample(benchmark::State& state) {
    const QTemporaryDir folder;
    desktop::PosixFileSystem files;
    NoLog log;
    desktop::DirectoryDefaultsStore store(files, log, folder.path() + QStringLiteral("/configuration"));
    desktop::ThreadSerialQueues queues;
    StillLoop loop;
    NoNetwork network;
    persistence::StorageManager storage(store, files, log, loop, folder.path());
    const persistence::HistoryManager history(files, log, folder.path(), 20);
    generation::PollinationsService models(loop, network, log, {});
    learning::AdaptivePromptLearner learner(loop, files, log, queues, storage, models, history, 1'000'000);
    const auto text = QStringLiteral("please answer this mail and keep it short, the meeting is on wednesday");
    for (auto _ : state)
        learner.recordInput(text);
}
// So few that the learner's thread has written them soon after.
BENCHMARK(recordSample)
    ->Name("recording of a sample, as its caller sees it")
    ->Iterations(20)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrelon::bench
