#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDirIterator>
#include <QTemporaryDir>
#include <array>
#include <chrono>
#include <csignal>
#include <random>
#include <set>
#include <thread>

#include "desktop/linux/directory_defaults_store.h"
#include "desktop/linux/posix_file_system.h"
#include "desktop/linux/thread_serial_queue.h"
#include "learning/adaptive_prompt_learner.h"
#include "support/fake_http_session.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/virtual_main_loop.h"

namespace tavrelon {

namespace {

/// The services that keep documents, as they stand after a start of the program.
class Keepers {
 public:
    explicit Keepers(const QString& folder)
        : store_(files_, log, folder + QStringLiteral("/configuration")),
          storage(store_, files_, log, loop_, folder + QStringLiteral("/data")),
          history(files_, log, storage.applicationSupport(), 20),
          learner(loop_, files_, log, queues_, storage, service_, history, 1'000'000) {}

    /// Saves all three, each in a version that is known by its letter.
    void save(unsigned number) {
        const auto text = version(number);
        storage.changeSettings([&](persistence::AppSettings& settings) {
            settings.cloneSystemPrompt = text;
            settings.cloneLanguageStyle = text;
        });
        learner.recordInput(text.left(200));
        storage.saveSettings();
        history.addEntry({.id = QUuid::createUuid(), .inputText = text, .outputText = text});
    }

    static QString version(unsigned number) { return QString(300, QChar(u'a' + number % 26)); }

    testing::RecordingLog log;

 private:
    testing::VirtualMainLoop loop_;
    desktop::PosixFileSystem files_;
    desktop::DirectoryDefaultsStore store_;
    desktop::ThreadSerialQueues queues_;
    testing::FakeHttpSession http_{loop_};

 public:
    persistence::StorageManager storage;

 private:
    generation::PollinationsService service_{loop_, http_, log, {}, {}};

 public:
    persistence::HistoryManager history;
    learning::AdaptivePromptLearner learner;
};

/// A program that saves until it is killed. It has saved everything once when this returns.
pid_t startProgram(const QString& folder, unsigned first) {
    std::array<int, 2> started{};
    if (::pipe2(started.data(), O_CLOEXEC) != 0)
        return -1;
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        Keepers keepers(folder);
        for (unsigned number = first;; ++number) {
            keepers.save(number);
            if (number == first && ::write(started[1], "!", 1) != 1)
                ::_exit(1);
        }
    }
    ::close(started[1]);
    char signal = 0;
    const bool saves = ::read(started[0], &signal, 1) == 1;
    ::close(started[0]);
    return saves ? child : -1;
}

/// Settings and entries are of one version each, and nothing failed to load.
void expectWhole(const Keepers& keepers, unsigned kill) {
    ASSERT_EQ(keepers.log.lines(), QStringList()) << "after kill " << kill;
    const auto& settings = keepers.storage.settings();
    ASSERT_EQ(settings.cloneSystemPrompt.size(), 300) << "the settings fell back to their defaults, kill " << kill;
    ASSERT_EQ(settings.cloneSystemPrompt, settings.cloneLanguageStyle);
    ASSERT_FALSE(keepers.history.entries().empty());
    for (const auto& entry : keepers.history.entries())
        ASSERT_EQ(entry.inputText, entry.outputText);
}

/// The documents, and what killed writes have left beside them.
int countFiles(const QString& folder) {
    int count = 0;
    for (QDirIterator file(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); file.hasNext();
         file.next())
        ++count;
    return count;
}

qsizetype storedSamples(const QString& folder) {
    const auto state =
        desktop::PosixFileSystem().read(folder + QStringLiteral("/data/adaptive_prompt_state.json")).value();
    const auto samples = learning::learnerStateFrom(text::parseJson(state)).pendingInputs;
    for (const auto& sample : samples)
        EXPECT_EQ(sample, QString(200, sample.front()));
    return std::ssize(samples);
}

}  // namespace

TEST(DocumentsKill, AKillAtAnyMomentLeavesEachDocumentWhole) {
    constexpr unsigned kills = 200;
    constexpr int documents = 3;
    const QTemporaryDir directory;
    std::mt19937 random(11);
    std::uniform_int_distribution<int> microseconds(0, 12'000);
    std::set<QString> seen;
    qsizetype samples = 0;
    bool interrupted = false;
    {
        Keepers first(directory.path());
        first.save(0);
    }
    for (unsigned i = 0; i < kills; ++i) {
        const pid_t program = startProgram(directory.path(), 7 * i + 1);
        ASSERT_GT(program, 0);
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        ASSERT_EQ(::kill(program, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(program, &status, 0), program);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the program ended by itself";
        const auto files = countFiles(directory.path());
        ASSERT_LE(files, 2 * documents) << "what killed writes leave behind must not pile up";
        interrupted |= files > documents;
        const auto left = storedSamples(directory.path());
        ASSERT_GE(left, samples) << "samples were lost at kill " << i;
        samples = left;
        const Keepers restarted(directory.path());
        expectWhole(restarted, i);
        if (HasFatalFailure())
            return;
        seen.insert(restarted.history.entries().front().inputText.left(1));
    }
    EXPECT_GT(seen.size(), 10U) << "the programs hardly saved";
    EXPECT_GT(samples, 20);
    EXPECT_TRUE(interrupted) << "no kill came in the midst of a write";
    Keepers(directory.path()).save(0);
    // Both threads may have left a file behind in one folder, and a lone write takes up one.
    EXPECT_LE(countFiles(directory.path()), documents + 1);
}

}  // namespace tavrelon
