#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <array>
#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include "desktop/linux/files/posix_file_system.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

namespace {

int modeOf(const QString& path) {
    struct stat status{};
    return ::stat(path.toLocal8Bit().constData(), &status) == 0 ? static_cast<int>(status.st_mode & 07777U) : -1;
}

ino_t fileNumber(const QString& path) {
    struct stat status{};
    return ::stat(path.toLocal8Bit().constData(), &status) == 0 ? status.st_ino : 0;
}

/// Takes the privileges away by which root writes where it may not.
bool dropPrivileges() {
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    std::array<__user_cap_data_struct, 2> none{};
    return ::syscall(SYS_capset, &header, none.data()) == 0;
}

/// Runs the block in a process that permissions bind and gives its result.
template <typename Block>
bool inOrdinaryProcess(Block block) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(dropPrivileges() && block() ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Lets no file of this process grow beyond `bytes`, as on a full disk.
bool limitFileSize(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

}  // namespace

class PosixFileSystemTest : public ::testing::Test {
 public:
    QString at(const char* name) const { return directory.path() + u'/' + QString::fromUtf8(name); }
    QByteArray native(const char* name) const { return at(name).toLocal8Bit(); }
    /// The content, or the text "error" when there is none to be had.
    QByteArray contentOf(const QString& path) const { return files.read(path).value_or("error"); }
    QByteArray contentOf(const char* name) const { return contentOf(at(name)); }
    QStringList names() const {
        return QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    QTemporaryDir directory;
    PosixFileSystem files;
};

TEST_F(PosixFileSystemTest, AWriteReplacesTheWholeFile) {
    const auto path = at("文档 1.json");
    EXPECT_FALSE(files.exists(path));
    for (const auto& content : {QByteArray(100'000, 'a'), QByteArray("short\0\n", 7), QByteArray(), QByteArray("x")}) {
        ASSERT_TRUE(files.write(path, content));
        EXPECT_EQ(contentOf(path), content);
    }
    EXPECT_TRUE(files.exists(path));
    ASSERT_TRUE(files.remove(path));
    EXPECT_FALSE(files.exists(path));
}

TEST_F(PosixFileSystemTest, FoldersAreMadeWithThoseAbove) {
    ASSERT_TRUE(files.createDirectory(at("a/b/c")));
    ASSERT_TRUE(files.createDirectory(at("a/b/c/")));
    ASSERT_TRUE(files.createDirectory(QStringLiteral("/")));
    EXPECT_TRUE(files.exists(at("a/b")));
    ASSERT_TRUE(files.write(at("a/b/c/f"), "x"));
    EXPECT_EQ(contentOf(at("a/b/c/f")), "x");
    EXPECT_FALSE(files.createDirectory(at("a/b/c/f")));
    EXPECT_FALSE(files.createDirectory(at("a/b/c/f/g")));
    EXPECT_EQ(contentOf(at("a/b/c/f")), "x");
}

TEST_F(PosixFileSystemTest, FailuresNameThePathAndChangeNothing) {
    ASSERT_TRUE(files.createDirectory(at("folder")));
    const auto failsFor = [](const QString& path, const auto& result) {
        return !result && result.error().description.startsWith(path + QStringLiteral(": ")) &&
               result.error().description.size() > path.size() + 2;
    };
    EXPECT_TRUE(failsFor(at("none"), files.read(at("none"))));
    EXPECT_TRUE(failsFor(at("folder"), files.read(at("folder"))));
    EXPECT_TRUE(failsFor(at("none/f"), files.write(at("none/f"), "x")));
    EXPECT_TRUE(failsFor(at("folder"), files.write(at("folder"), "x")));
    EXPECT_TRUE(failsFor(at("none"), files.remove(at("none"))));
    EXPECT_TRUE(failsFor(at("folder"), files.remove(at("folder"))));
    EXPECT_FALSE(files.exists(at("none")));
    EXPECT_TRUE(files.exists(at("folder")));

    for (const auto& path : {QStringLiteral("relative"), QString(), at("f") + QChar(0) + QStringLiteral("g")}) {
        EXPECT_TRUE(failsFor(path, files.write(path, "x")));
        EXPECT_TRUE(failsFor(path, files.read(path)));
        EXPECT_TRUE(failsFor(path, files.createDirectory(path)));
        EXPECT_TRUE(failsFor(path, files.remove(path)));
        EXPECT_FALSE(files.exists(path));
    }
    EXPECT_FALSE(files.exists(at("f")));
}

TEST_F(PosixFileSystemTest, FilesAndFoldersAreTheirOwnersAlone) {
    ASSERT_TRUE(files.createDirectory(at("a/b")));
    ASSERT_TRUE(files.write(at("f"), "x"));
    EXPECT_EQ(modeOf(at("a")), 0700);
    EXPECT_EQ(modeOf(at("a/b")), 0700);
    EXPECT_EQ(modeOf(at("f")), 0600);
    ASSERT_EQ(::chmod(native("f").constData(), 0644), 0);
    ASSERT_TRUE(files.write(at("f"), "y"));
    EXPECT_EQ(modeOf(at("f")), 0600);
    EXPECT_EQ(names(), (QStringList{QStringLiteral("a"), QStringLiteral("f")}));  // and no temporary file
}

TEST_F(PosixFileSystemTest, LinksAreFollowedAndStay) {
    ASSERT_TRUE(files.createDirectory(at("elsewhere")));
    ASSERT_EQ(::symlink("elsewhere/real", native("link").constData()), 0);
    ASSERT_EQ(::symlink(native("link").constData(), native("chain").constData()), 0);
    for (const char* content : {"first", "second"}) {  // to a missing target, then to one that is there
        ASSERT_TRUE(files.write(at("chain"), content));
        EXPECT_EQ(contentOf("elsewhere/real"), content);
    }
    EXPECT_EQ(contentOf("link"), "second");
    EXPECT_TRUE(QFileInfo(at("chain")).isSymLink() && QFileInfo(at("link")).isSymLink());

    ASSERT_EQ(::symlink("loop", native("loop").constData()), 0);
    EXPECT_FALSE(files.write(at("loop"), "x"));
    ASSERT_TRUE(files.remove(at("chain")));
    EXPECT_EQ(contentOf("elsewhere/real"), "second");
}

TEST_F(PosixFileSystemTest, AHardLinkPutThereBeforehandIsNeverWrittenThrough) {
    ASSERT_TRUE(files.write(at("other"), "precious"));
    ASSERT_TRUE(files.createDirectory(at("ours")));
    ASSERT_EQ(::link(native("other").constData(), native("ours/.tavrelon-write-0").constData()), 0);
    ASSERT_TRUE(files.write(at("ours/f"), "new"));  // by another temporary name
    EXPECT_EQ(contentOf("other"), "precious");

    ASSERT_EQ(::link(native("other").constData(), native("ours/linked").constData()), 0);
    const auto refused = files.write(at("ours/linked"), "new");
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().description.endsWith(QStringLiteral("The file has a second name (a hard link)")));
    ASSERT_EQ(::chmod(native("ours").constData(), 0555), 0);
    EXPECT_TRUE(inOrdinaryProcess([this] { return !files.write(at("ours/linked"), "new in place"); }));
    ASSERT_EQ(::chmod(native("ours").constData(), 0700), 0);
    EXPECT_EQ(contentOf("other"), "precious");
}

TEST_F(PosixFileSystemTest, AFolderThatRefusesNewFilesIsWrittenInPlace) {
    ASSERT_TRUE(files.write(at("open"), "a long old content"));
    ASSERT_TRUE(files.write(at("closed"), "old"));
    ASSERT_EQ(::chmod(native("closed").constData(), 0444), 0);
    ASSERT_EQ(::chmod(native(".").constData(), 0555), 0);
    const auto before = fileNumber(at("open"));
    const bool asExpected = inOrdinaryProcess([this] {
        return files.write(at("open"), "short") && files.write(at("open"), QByteArray(9000, 'n')) &&
               !files.write(at("closed"), "new") && !files.write(at("new"), "new") &&
               !files.createDirectory(at("folder"));
    });
    ASSERT_EQ(::chmod(native(".").constData(), 0700), 0);
    EXPECT_TRUE(asExpected);
    EXPECT_EQ(contentOf("open"), QByteArray(9000, 'n'));
    EXPECT_EQ(contentOf("closed"), "old");
    EXPECT_EQ(fileNumber(at("open")), before);
    EXPECT_EQ(names(), (QStringList{QStringLiteral("closed"), QStringLiteral("open")}));
}

TEST_F(PosixFileSystemTest, AFullDiskLeavesTheOldContent) {
    ASSERT_TRUE(files.createDirectory(at("writable")));
    ASSERT_TRUE(files.createDirectory(at("refusing")));
    for (const char* name : {"writable/f", "refusing/f"})
        ASSERT_TRUE(files.write(at(name), "old"));
    ASSERT_EQ(::chmod(native("refusing").constData(), 0555), 0);
    EXPECT_TRUE(inOrdinaryProcess([this] {
        return limitFileSize(5000) && !files.write(at("writable/f"), QByteArray(9000, 'n')) &&
               !files.write(at("refusing/f"), QByteArray(9000, 'n')) && contentOf("refusing/f") == "old" &&
               files.write(at("refusing/f"), "new");
    }));
    ASSERT_EQ(::chmod(native("refusing").constData(), 0700), 0);
    EXPECT_EQ(contentOf("writable/f"), "old");
    EXPECT_EQ(contentOf("refusing/f"), "new");
    EXPECT_EQ(QDir(at("writable")).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("f")});
}

TEST_F(PosixFileSystemTest, PipesAndDevicesNeverHoldItUp) {
    ASSERT_EQ(::mkfifo(native("pipe").constData(), 0600), 0);
    ASSERT_EQ(::symlink("/dev/null", native("nowhere").constData()), 0);
    EXPECT_FALSE(files.read(at("pipe")));
    EXPECT_FALSE(files.write(at("pipe"), "x"));
    EXPECT_FALSE(files.read(QStringLiteral("/dev/zero")));
    EXPECT_TRUE(files.write(at("nowhere"), "x"));
    EXPECT_TRUE(QFileInfo(at("nowhere")).isSymLink());
}

TEST_F(PosixFileSystemTest, WhatCannotBeReadIsNotReplaced) {
    ASSERT_TRUE(files.write(at("f"), "whole"));
    ASSERT_EQ(::chmod(native("f").constData(), 0), 0);
    EXPECT_FALSE(inOrdinaryProcess([&] { return files.write(at("f"), "defaults").has_value(); }));
    ASSERT_EQ(::chmod(native("f").constData(), S_IRUSR | S_IWUSR), 0);
    EXPECT_EQ(contentOf("f"), "whole");

    // Whoever could not read it does not know what is in it when it can be read again.
    ASSERT_EQ(::mkfifo(native("late").constData(), 0600), 0);
    EXPECT_FALSE(files.read(at("late")));
    ASSERT_EQ(::rename(native("f").constData(), native("late").constData()), 0);
    EXPECT_FALSE(files.write(at("late"), "defaults"));
    EXPECT_EQ(contentOf("late"), "whole");
    ASSERT_TRUE(files.read(at("late")));
    EXPECT_TRUE(files.write(at("late"), "more"));
}

TEST_F(PosixFileSystemTest, AKillAtAnyMomentLeavesTheFileWholeAndLittleBesideIt) {
    bool interrupted = false;
    for (int kill = 0; kill < 60; ++kill) {
        const auto letter = static_cast<char>('a' + kill % 26);
        std::array<int, 2> started{};
        ASSERT_EQ(::pipe2(started.data(), O_CLOEXEC), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            for (;;)
                if (!files.write(at("f"), QByteArray(20'000, letter)) || ::write(started[1], "!", 1) != 1)
                    ::_exit(1);
        }
        ::close(started[1]);
        char saved = 0;
        ASSERT_EQ(::read(started[0], &saved, 1), 1);
        ::usleep(static_cast<useconds_t>(kill * 7 % 97));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(started[0]);
        ASSERT_TRUE(WIFSIGNALED(status)) << "it ended by itself";
        ASSERT_EQ(contentOf("f"), QByteArray(20'000, letter)) << "kill " << kill;
        ASSERT_LE(names().size(), 2) << "what killed writes leave behind must not pile up";
        interrupted |= names().size() > 1;
    }
    EXPECT_TRUE(interrupted) << "no kill came in the midst of a write";
}

TEST_F(PosixFileSystemTest, ManyThreadsWriteWithoutMixingTheirContents) {
    constexpr int rounds = 30;
    std::atomic<int> failures = 0;
    {
        std::vector<std::jthread> writers;
        for (const char letter : {'a', 'b', 'c', 'd'})
            writers.emplace_back([this, letter, &failures] {
                for (int i = 0; i < rounds; ++i) {
                    failures += files.write(at("shared"), QByteArray(20'000, letter)) ? 0 : 1;
                    const auto content = files.read(at("shared"));
                    failures += content && *content == QByteArray(20'000, content->at(0)) ? 0 : 1;
                }
            });
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(names(), QStringList{QStringLiteral("shared")});
}

}  // namespace tavrelon::desktop
