#include <gtest/gtest.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include "desktop/tools.h"
#include "desktop/x11/windows/x11_workspace.h"
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

/// A window of another process, which ends with this object.
class ForeignWindow {
 public:
    explicit ForeignWindow(const QString& title) {
        process_.start(QStringLiteral("sleep"), {QStringLiteral("60")});
        process_.waitForStarted();
        window_.emplace(TestWindowProperties{.processIdentifier = process_.processId(),
                                             .machine = thisMachine(),
                                             .windowClass = QStringLiteral("Unheard-of"),
                                             .title = title});
    }
    ForeignWindow(const ForeignWindow&) = delete;
    ForeignWindow& operator=(const ForeignWindow&) = delete;
    ~ForeignWindow() { end(); }
    void end() {
        window_.reset();
        process_.kill();
        process_.waitForFinished();
    }

 private:
    QProcess process_;
    std::optional<TestWindow> window_;
};

// The first one: nothing is in front yet.
TEST_F(Workspace, TheFocusedWindowNamesItsApplicationAndAnActivatedOneComesToTheFront) {
    EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace->frontmostWindow(), std::nullopt);
    EXPECT_EQ(workspace->frontmostWindowTitle(), std::nullopt);
    EXPECT_EQ(workspace->frontmostWindowPlace(), std::nullopt);

    ForeignWindow window(QStringLiteral("Brief 回复 ✉"));
    ASSERT_TRUE(titleInFront(QStringLiteral("Brief 回复 ✉")));
    const auto other = workspace->frontmostApplication().value();
    EXPECT_EQ(other.bundleIdentifier, QStringLiteral("Unheard-of"));
    EXPECT_EQ(other.localizedName, QStringLiteral("Unheard-of"));
    EXPECT_EQ(workspace->frontmostWindow(),
              (platform::FrontmostWindow{other.windowIdentifier, other.processIdentifier}));
    const auto place = workspace->frontmostWindowPlace();
    EXPECT_TRUE(place && place->width > 0 && place->height > 0 && place->shadow == platform::WindowPlace::Shadow());

    const TestWindow ours(own(QStringLiteral("Dashboard")));
    ASSERT_TRUE(titleInFront(QStringLiteral("Dashboard")));
    const auto self = workspace->frontmostApplication().value();
    EXPECT_TRUE(workspace->activate(other));
    EXPECT_TRUE(
        runQtUntil([&] { return workspace->frontmostApplication() == other && workspace->hasKeyboard(other); }));
    EXPECT_FALSE(workspace->hasKeyboard(self));
    EXPECT_TRUE(workspace->activate(self));
    EXPECT_TRUE(runQtUntil([&] { return workspace->frontmostApplication() == self; }));

    EXPECT_FALSE(workspace->isTerminated(other));
    window.end();
    EXPECT_TRUE(runQtUntil([&] { return workspace->isTerminated(other); }));
    EXPECT_FALSE(workspace->activate(other));
}

TEST_F(Workspace, RealProgramsAreNamedByTheirEntries) {
    struct Expected {
        const char* program;
        const char* identifier;
        const char* name;
        const char* titlePart;
    };
    QTemporaryDir folder;
    const auto path = folder.filePath(QStringLiteral("notes.txt"));
    writeWhole(path, {});
    for (const auto& [program, identifier, name, titlePart] :
         {Expected{"mousepad", "org.xfce.mousepad", "Mousepad", "notes.txt"},
          Expected{"featherpad", "featherpad", "FeatherPad", "notes.txt"},
          Expected{"xterm", "debian-xterm", "XTerm", ""}}) {
        const bool isEditor = *titlePart != '\0';
        const RunningProgram running(QString::fromLatin1(program), isEditor ? QStringList{path} : QStringList{});
        ASSERT_TRUE(inFront([&](const auto& front) { return front.processIdentifier == running.process(); }))
            << program;
        const auto front = workspace->frontmostApplication();
        ASSERT_TRUE(front);
        EXPECT_EQ(front->bundleIdentifier, QString::fromLatin1(identifier));
        EXPECT_EQ(front->localizedName, QString::fromLatin1(name));
        // Editors load the file, and name it in the title, only after their window has come.
        EXPECT_TRUE(runQtUntil([&] {
            return workspace->frontmostWindowTitle().value_or(QString()).contains(QString::fromLatin1(titlePart));
        })) << program;
        EXPECT_FALSE(workspace->isTerminated(*front));
    }
}

TEST_F(Workspace, TheServerTellsTheProcessOfAWindowThatSaysNothingOrCountsInASandbox) {
    const TestWindow sandboxed({.processIdentifier = 2, .machine = thisMachine(), .title = QStringLiteral("in a box")});
    ASSERT_TRUE(titleInFront(QStringLiteral("in a box")));
    EXPECT_EQ(workspace->frontmostApplication()->processIdentifier, ::getpid());
    const TestWindow silent({});
    ASSERT_TRUE(runQtUntil([&] { return workspace->frontmostApplication()->windowIdentifier == silent.window(); }));
    EXPECT_EQ(workspace->frontmostApplication()->processIdentifier, ::getpid());
    EXPECT_EQ(workspace->frontmostWindowTitle(), std::nullopt);
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

TEST_F(Workspace, OfAnApplicationOnAnotherMachineOnlyTheProcessIsUnknown) {
    auto properties = own(QStringLiteral("from afar"));
    properties.windowClass = QStringLiteral("Far-away");
    properties.machine = QStringLiteral("another-machine");
    const TestWindow window(properties);
    ASSERT_TRUE(titleInFront(QStringLiteral("from afar")));
    const auto front = workspace->frontmostApplication();
    ASSERT_TRUE(front);
    EXPECT_EQ(front->processIdentifier, 0);
    EXPECT_EQ(front->localizedName, QStringLiteral("Far-away"));
    EXPECT_FALSE(workspace->isTerminated(*front));
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

TEST_F(Workspace, WithoutAWindowManagerTheInputFocusDecides) {
    const BareServer server;
    const auto oldDisplay = qgetenv("DISPLAY");
    qputenv("DISPLAY", server.display());
    {
        TestWindow window(own(QStringLiteral("unmanaged")));
        const auto bare = desktop::X11Workspace::create().value();
        EXPECT_EQ(bare->frontmostApplication(), std::nullopt);
        window.takeFocus();
        EXPECT_TRUE(runQtUntil([&] { return bare->frontmostWindowTitle() == QStringLiteral("unmanaged"); }));
        const auto front = bare->frontmostApplication();
        EXPECT_FALSE(front && bare->activate(*front)) << "there is nobody to ask";
    }
    qputenv("DISPLAY", oldDisplay);
}

TEST_F(Workspace, AServerThatIsHeldCostsTheBound) {
    ClipboardPeer holder;
    holder.holdServer();
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
    writeProgram(folder.filePath(QStringLiteral("xdg-open")), "printf '%s|%s' \"$#\" \"$1\" > '" + record.toUtf8() +
                                                                  ".new' && mv '" + record.toUtf8() + ".new' '" +
                                                                  record.toUtf8() + "'\n");
    const auto oldPath = qgetenv("PATH");
    qputenv("PATH", folder.path().toUtf8() + ":" + oldPath);
    EXPECT_TRUE(workspace->openUrl(QUrl(QStringLiteral("https://example.org/a?b=$(touch x);c d&é"))));
    EXPECT_TRUE(runQtUntil([&] { return QFile::exists(record); }));
    EXPECT_EQ(contentsOf(record), "1|https://example.org/a?b=$(touch%20x);c%20d&%C3%A9");
    for (const auto& none : {QStringLiteral("--help"), QString()})
        EXPECT_FALSE(workspace->openUrl(QUrl(none)));
    qputenv("PATH", "/nonexistent");
    EXPECT_FALSE(workspace->openUrl(QUrl(QStringLiteral("https://example.org"))));
    qputenv("PATH", oldPath);
}

}  // namespace

}  // namespace tavrelon::testing
