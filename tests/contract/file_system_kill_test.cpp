#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <array>
#include <chrono>
#include <csignal>
#include <random>
#include <set>
#include <thread>

#include "desktop/linux/posix_file_system.h"

namespace tavrelon::desktop {

namespace {

/// Content that tells on itself when a part of it is missing or of another version.
QByteArray version(unsigned number) {
    const auto letter = static_cast<char>('a' + number % 26);
    return QByteArray(static_cast<qsizetype>(40'000 + 1'000 * (number % 26)), letter);
}

bool isWholeVersion(const QByteArray& content) {
    if (content.isEmpty() || content[0] < 'a' || content[0] > 'z')
        return false;
    return content == version(static_cast<unsigned>(content[0] - 'a'));
}

/// A process that rewrites the file until it is killed. It is in its second write, or beyond, when this returns.
pid_t startWriter(const QString& path, unsigned first) {
    std::array<int, 2> started{};
    if (::pipe2(started.data(), O_CLOEXEC) != 0)
        return -1;
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        PosixFileSystem files;
        for (unsigned number = first; files.write(path, version(number)); ++number)
            if (number == first && ::write(started[1], "!", 1) != 1)
                break;
        ::_exit(1);
    }
    ::close(started[1]);
    char signal = 0;
    const bool writes = ::read(started[0], &signal, 1) == 1;
    ::close(started[0]);
    return writes ? child : -1;
}

}  // namespace

TEST(PosixFileSystemKill, AKillAtAnyMomentLeavesOneWholeVersion) {
    constexpr unsigned kills = 200;
    const QTemporaryDir directory;
    const auto path = directory.path() + QStringLiteral("/document.json");
    PosixFileSystem files;
    ASSERT_TRUE(files.write(path, version(0)));
    std::mt19937 random(7);
    std::uniform_int_distribution<int> microseconds(0, 8'000);
    std::set<QByteArray> seen;
    bool interrupted = false;
    for (unsigned i = 0; i < kills; ++i) {
        const pid_t writer = startWriter(path, 7 * i + 1);
        ASSERT_GT(writer, 0);
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        ASSERT_EQ(::kill(writer, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(writer, &status, 0), writer);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer failed by itself";
        const auto content = files.read(path);
        ASSERT_TRUE(content);
        ASSERT_TRUE(isWholeVersion(*content)) << "kill " << i << ", " << content->size() << " bytes";
        seen.insert(content->first(1));
        const auto names = QDir(directory.path()).entryList(QDir::Files | QDir::Hidden);
        ASSERT_LE(names.size(), 2) << "what killed writers leave behind must not pile up";
        interrupted = interrupted || names.size() == 2;
    }
    EXPECT_GT(seen.size(), 10U) << "the writers hardly wrote";
    EXPECT_TRUE(interrupted) << "no kill came in the midst of a write";
    ASSERT_TRUE(files.write(path, version(3)));
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

}  // namespace tavrelon::desktop
