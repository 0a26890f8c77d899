#include "desktop/linux/files/user_folders.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <csignal>
#include <future>

#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/files/private_folder.h"
#include "desktop/linux/process/single_instance.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

namespace {

QString folders(std::initializer_list<std::pair<const char*, const char*>> variables,
                const char* accountHome = "/acc") {
    QProcessEnvironment environment;
    for (const auto& [name, value] : variables)
        environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
    const auto found = userFolders(environment, QString::fromLatin1(accountHome));
    return found ? found->configuration + u' ' + found->applicationSupport : QStringLiteral("absent");
}

/// Somebody else; only root can be them.
constexpr uid_t nobody = 65534;

class PrivateFolderTest : public ::testing::Test {
 public:
    QString at(const char* name) const { return base.path() + u'/' + QString::fromLatin1(name); }
    QByteArray native(const char* name) const { return at(name).toLocal8Bit(); }
    int modeOf(const char* name) const {
        struct stat status{};
        return ::stat(native(name).constData(), &status) == 0 ? static_cast<int>(status.st_mode & 07777U) : -1;
    }
    void makeFolder(const char* name, mode_t mode) const {
        ASSERT_TRUE(QDir().mkpath(at(name)));
        ASSERT_EQ(::chmod(native(name).constData(), mode), 0);
    }
    void makeFile(const char* name, mode_t mode) const {
        ASSERT_TRUE(PosixFileSystem().write(at(name), "x"));
        ASSERT_EQ(::chmod(native(name).constData(), mode), 0);
    }
    /// What the user is told of the folder "ours", without its path.
    QString refusal() const {
        const auto made = makePrivate(at("ours"));
        return made ? QString() : QString(made.error()).remove(base.path());
    }

    QTemporaryDir base;
};

}  // namespace

TEST_F(PrivateFolderTest, ModesAreSetAndAMissingFolderIsMade) {
    EXPECT_EQ(refusal(), QString());
    EXPECT_EQ(modeOf("ours"), 0700);
    makeFolder("ours/below", 0777);
    for (const char* file : {"ours/history.json", "ours/below/f"})
        makeFile(file, 0666);
    makeFile("elsewhere", 0644);
    ASSERT_EQ(::symlink("../elsewhere", native("ours/mine").constData()), 0);
    makeFolder("ours", 01777);
    EXPECT_EQ(refusal(), QString());
    EXPECT_EQ(modeOf("ours"), 0700);
    EXPECT_EQ(modeOf("ours/below"), 0700);
    EXPECT_EQ(modeOf("ours/history.json"), 0600);
    EXPECT_EQ(modeOf("ours/below/f"), 0600);
    EXPECT_EQ(modeOf("elsewhere"), 0644) << "a link of the user's own is their affair";
}

TEST_F(PrivateFolderTest, WhatSomebodyElseMayHavePutThereIsRefused) {
    makeFolder("theirs", 0755);
    ASSERT_EQ(::symlink("theirs", native("ours").constData()), 0);
    EXPECT_EQ(refusal(), QStringLiteral("/ours is a symbolic link. Put a folder there."));
    EXPECT_EQ(modeOf("theirs"), 0755);
    ASSERT_EQ(::unlink(native("ours").constData()), 0);

    makeFolder("ours", 0777);
    makeFile("precious", 0644);
    ASSERT_EQ(::link(native("precious").constData(), native("ours/key").constData()), 0);
    EXPECT_EQ(refusal(), QStringLiteral("/ours/key has a second name (a hard link). Remove one of the two."));
    EXPECT_EQ(modeOf("precious"), 0644);
    ASSERT_EQ(::unlink(native("ours/key").constData()), 0);

    if (::geteuid() != 0)
        return;
    makeFile("ours/key", 0644);
    ASSERT_EQ(::symlink("../precious", native("ours/link").constData()), 0);
    for (const char* foreign : {"ours", "ours/key", "ours/link"}) {
        ASSERT_EQ(::lchown(native(foreign).constData(), nobody, nobody), 0);
        EXPECT_EQ(refusal(), u'/' + QString::fromLatin1(foreign) + QStringLiteral(" belongs to another user."));
        ASSERT_EQ(::lchown(native(foreign).constData(), 0, 0), 0);
    }
}

class SingleInstanceTest : public PrivateFolderTest {
 public:
    SingleInstanceTest() {
        for (const char* own : {"config", "runtime"})
            makeFolder(own, 0700);
        makeFolder("shared", 0777);
        makeFolder(".", 0711);
    }
    auto claim(const QString& runtime) const { return SingleInstance::claim(at("config"), runtime); }

    /// Puts a process of another user behind a socket with that name, which greets whoever calls.
    void squat(const QString& name) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const auto path = QDir(at("shared")).filePath(name).toLocal8Bit();
        ASSERT_LT(path.size(), static_cast<qsizetype>(sizeof address.sun_path));
        std::copy(path.begin(), path.end(), address.sun_path);
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if ((squatter = ::fork()) == 0) {
            const bool other = ::geteuid() != 0 || ::setresuid(nobody, nobody, nobody) == 0;
            if (!other || ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
                ::listen(fd, 8) != 0)
                ::_exit(1);
            for (;;)
                static_cast<void>(::write(::accept(fd, nullptr, nullptr), "!", 1));
        }
        ::close(fd);
        for (int i = 0; i < 5000 && !QDir(at("shared")).entryList(QDir::System | QDir::Hidden).contains(name); ++i)
            ::usleep(1000);
        ASSERT_EQ(::waitpid(squatter, nullptr, WNOHANG), 0);
    }
    ~SingleInstanceTest() override {
        if (squatter > 0) {
            ::kill(squatter, SIGKILL);
            ::waitpid(squatter, nullptr, 0);
        }
    }

    pid_t squatter = 0;
};

TEST_F(SingleInstanceTest, OneHoldsTheFolderAndNobodyStandsInItsWay) {
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    const auto sockets = [this](const char* folder) {
        return QDir(at(folder)).entryList({QStringLiteral(".tavrelon-*")}, QDir::System | QDir::Hidden);
    };
    ASSERT_TRUE(claim(at("runtime")));
    EXPECT_TRUE(sockets("runtime").isEmpty()) << "an orderly end leaves nothing behind";
    for (const auto& runtime : {at("runtime"), at("shared"), at("missing"), QStringLiteral("relative"), QString()}) {
        SCOPED_TRACE(runtime.toStdString());
        if (const pid_t killed = ::fork(); killed == 0) {
            const auto held = claim(runtime);
            ::raise(SIGKILL);
        } else {
            ::waitpid(killed, nullptr, 0);
        }
        const bool inRuntime = runtime == at("runtime");
        const auto names = sockets(inRuntime ? "runtime" : "config");
        ASSERT_EQ(names.size(), 1) << "the socket of the killed process, in the one folder or the other";
        if (inRuntime)
            squat(names.value(0));

        auto first = claim(runtime);
        ASSERT_TRUE(first) << "what a killed process leaves is no obstacle, nor is a stranger's socket";
        int calls = 0;
        (*first)->setOnCalled(
            [&calls](const QString& wanted) { calls += wanted == SingleInstance::dashboard ? 1 : 100; });
        auto second = std::async(std::launch::async, [&] { return claim(runtime); });
        while (second.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            QCoreApplication::processEvents();
        const auto refused = second.get();
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error(), SingleInstance::Refusal::Answered);
        EXPECT_EQ(calls, 1);
    }
}

TEST(UserFolders, FollowTheBaseDirectoryRules) {
    const auto standard = QStringLiteral("/h/.config/Tavrelon /h/.local/share/Tavrelon");
    EXPECT_EQ(folders({{"HOME", "/h"}}), standard);
    EXPECT_EQ(folders({{"HOME", "/h"}, {"XDG_CONFIG_HOME", ""}, {"XDG_DATA_HOME", ""}}), standard);
    EXPECT_EQ(folders({{"HOME", "/h"}, {"XDG_CONFIG_HOME", "conf"}, {"XDG_DATA_HOME", "./data"}}), standard);
    EXPECT_EQ(folders({{"HOME", "/h"}, {"XDG_CONFIG_HOME", "/c"}}),
              QStringLiteral("/c/Tavrelon /h/.local/share/Tavrelon"));
    EXPECT_EQ(folders({}), QStringLiteral("/acc/.config/Tavrelon /acc/.local/share/Tavrelon"));
    EXPECT_EQ(folders({{"HOME", "relative"}}, ""), QStringLiteral("absent"));
    EXPECT_EQ(folders({{"XDG_CONFIG_HOME", "/c"}, {"XDG_DATA_HOME", "/d"}}, ""),
              QStringLiteral("/c/Tavrelon /d/Tavrelon"));
}

}  // namespace tavrelon::desktop
