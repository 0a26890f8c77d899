#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "desktop/x11/x11_workspace.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"
#include "support/test_window.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;
using platform::RunningApplication;

class Workspace : public ::testing::Test {
 public:
    std::unique_ptr<desktop::X11Workspace> workspace = desktop::X11Workspace::create().value();

    bool inFront(const std::function<bool(const RunningApplication&)>& matches) const {
        return runQtUntil([&] {
            const auto front = workspace->frontmostApplication();
            return front && matches(*front);
        });
    }
    bool titleInFront(const QString& title) const {
        return runQtUntil([&] { return workspace->frontmostWindowTitle() == title; });
    }
    static TestWindowProperties own(const QString& title) {
        return {.processIdentifier = ::getpid(), .machine = thisMachine(), .title = title};
    }
};

/// A real program with a window, ended with this object.
class Program {
 public:
    Program(const QString& program, const QStringList& arguments) {
        process_.setStandardOutputFile(QProcess::nullDevice());
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(program, arguments);
        process_.waitForStarted();
    }
    ~Program() {
        process_.terminate();
        if (!process_.waitForFinished(3000)) {
            process_.kill();
            process_.waitForFinished();
        }
    }
    qint64 number() const { return process_.processId(); }

 private:
    QProcess process_;
};

TEST_F(Workspace, RealProgramsAreNamedByTheirEntries) {
    struct Expected {
        const char* program;
        const char* identifier;
        const char* name;
        const char* titlePart;
    };
    QTemporaryDir folder;
    const auto path = folder.filePath(QStringLiteral("notes.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    for (const auto& [program, identifier, name, titlePart] :
         {Expected{"mousepad", "org.xfce.mousepad", "Mousepad", "notes.txt"},
          Expected{"featherpad", "featherpad", "FeatherPad", "notes.txt"},
          Expected{"xterm", "debian-xterm", "XTerm", ""}}) {
        const bool isEditor = *titlePart != '\0';
        const Program running(QString::fromLatin1(program), isEditor ? QStringList{path} : QStringList{});
        ASSERT_TRUE(inFront([&](const auto& front) { return front.processIdentifier == running.number(); })) << program;
        const auto front = workspace->frontmostApplication();
        ASSERT_TRUE(front);
        EXPECT_EQ(front->bundleIdentifier, QString::fromLatin1(identifier));
        EXPECT_EQ(front->localizedName, QString::fromLatin1(name));
        // Editors load the file, and name it in the title, only after their window has come.
        EXPECT_TRUE(runQtUntil([&] {
            return workspace->frontmostWindowTitle().value_or(QString()).contains(QString::fromLatin1(titlePart));
        })) << program;
        EXPECT_FALSE(workspace->isOwnApplicationActive());
        EXPECT_FALSE(workspace->isTerminated(*front));
    }
}

TEST_F(Workspace, AWindowThatSaysNothingIsNoApplicationAndHasNoTitle) {
    const TestWindow before(own(QStringLiteral("before")));
    ASSERT_TRUE(titleInFront(QStringLiteral("before")));
    const TestWindow silent({});
    ASSERT_TRUE(runQtUntil([&] { return !workspace->frontmostApplication(); }));
    EXPECT_EQ(workspace->frontmostWindowTitle(), std::nullopt);
    EXPECT_FALSE(workspace->isOwnApplicationActive());
}

TEST_F(Workspace, AProcessWithoutAClassHasANumberOnly) {
    const TestWindow window(own(QStringLiteral("only a number")));
    ASSERT_TRUE(titleInFront(QStringLiteral("only a number")));
    const auto front = workspace->frontmostApplication();
    ASSERT_TRUE(front);
    EXPECT_EQ(front->bundleIdentifier, std::nullopt);
    EXPECT_EQ(front->localizedName, std::nullopt);
    EXPECT_EQ(front->windowIdentifier, window.window());
}

TEST_F(Workspace, ANumberFromAnotherMachineIsNotTrusted) {
    auto properties = own(QStringLiteral("from afar"));
    properties.machine = QStringLiteral("another-machine");
    const TestWindow window(properties);
    ASSERT_TRUE(titleInFront(QStringLiteral("from afar")));
    EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
    EXPECT_FALSE(workspace->isOwnApplicationActive());
}

TEST_F(Workspace, AnOldTitleIsReadInItsOwnEncoding) {
    auto properties = own({});
    properties.title.reset();
    properties.oldTitleOnly = QStringLiteral("café");
    const TestWindow window(properties);
    EXPECT_TRUE(titleInFront(QStringLiteral("café")));
}

TEST_F(Workspace, AWindowThatIsDestroyedBetweenTwoRequestsIsNoError) {
    const auto queries = desktop::X11WindowQueries::open({}).value();
    TestWindow window(own(QStringLiteral("soon gone")));
    ASSERT_TRUE(titleInFront(QStringLiteral("soon gone")));
    const auto front = workspace->frontmostApplication();
    ASSERT_TRUE(front);
    window.destroy();
    const auto found = queries->properties(window.window());
    EXPECT_EQ(found.processIdentifier, 0);
    EXPECT_EQ(found.title, std::nullopt);
    EXPECT_TRUE(workspace->isTerminated(*front)) << "the process lives, but its window does not";
    EXPECT_FALSE(workspace->activate(*front));
    EXPECT_TRUE(runQtUntil([&] { return !workspace->frontmostApplication(); }));
}

TEST_F(Workspace, AQuestionTakesFewMilliseconds) {
    const TestWindow window(own(QStringLiteral("measured")));
    ASSERT_TRUE(titleInFront(QStringLiteral("measured")));
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(workspace->frontmostApplication());
    EXPECT_LT(clock.elapsed() / 200, 20);
}

TEST_F(Workspace, WithoutAWindowManagerTheInputFocusDecides) {
    // A second server, on which nobody manages windows.
    QProcess server;
    server.start(QStringLiteral("Xvfb"),
                 {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
                  QStringLiteral("640x480x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    ASSERT_TRUE(server.waitForReadyRead(10'000));
    const auto display = ":" + server.readAllStandardOutput().trimmed();
    const auto oldDisplay = qgetenv("DISPLAY");
    qputenv("DISPLAY", display);
    {
        TestWindow window(own(QStringLiteral("unmanaged")));
        const auto bare = desktop::X11Workspace::create().value();
        EXPECT_EQ(bare->frontmostApplication(), std::nullopt);
        window.takeFocus();
        EXPECT_TRUE(runQtUntil([&] { return bare->isOwnApplicationActive(); }));
        EXPECT_EQ(bare->frontmostWindowTitle(), QStringLiteral("unmanaged"));
        const auto front = bare->frontmostApplication();
        EXPECT_FALSE(front && bare->activate(*front)) << "there is nobody to ask";
    }
    qputenv("DISPLAY", oldDisplay);
    server.terminate();
    server.waitForFinished();
}

TEST_F(Workspace, AServerThatIsHeldCostsTheBound) {
    ClipboardPeer holder;
    xcb_grab_server(holder.xcb());
    std::free(xcb_get_input_focus_reply(holder.xcb(), xcb_get_input_focus(holder.xcb()), nullptr));
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
    EXPECT_LT(clock.elapsed(), 3000);
    holder.disconnect();
    const TestWindow window(own(QStringLiteral("free again")));
    EXPECT_TRUE(titleInFront(QStringLiteral("free again")));
}

TEST_F(Workspace, AnAddressGoesToTheDesktopsOpenerAsOneArgument) {
    QTemporaryDir folder;
    const auto record = folder.filePath(QStringLiteral("record"));
    QFile opener(folder.filePath(QStringLiteral("xdg-open")));
    ASSERT_TRUE(opener.open(QIODevice::WriteOnly));
    opener.write("#!/bin/sh\nprintf '%s|%s' \"$#\" \"$1\" > '" + record.toUtf8() + ".new' && mv '" + record.toUtf8() +
                 ".new' '" + record.toUtf8() + "'\n");
    opener.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    opener.close();
    const auto oldPath = qgetenv("PATH");
    qputenv("PATH", folder.path().toUtf8() + ":" + oldPath);
    EXPECT_TRUE(workspace->openUrl(QUrl(QStringLiteral("https://example.org/a?b=$(touch x);c d&é"))));
    EXPECT_TRUE(runQtUntil([&] { return QFile::exists(record); }));
    QFile written(record);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "1|https://example.org/a?b=$(touch%20x);c%20d&%C3%A9");
    EXPECT_FALSE(workspace->openUrl(QUrl(QStringLiteral("--help"))));
    qputenv("PATH", "/nonexistent");
    EXPECT_FALSE(workspace->openUrl(QUrl(QStringLiteral("https://example.org"))));
    qputenv("PATH", oldPath);
}

}  // namespace

}  // namespace tavrelon::testing
