// What every workspace does, the fake and the one of the X server.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QProcess>
#include <map>
#include <memory>

#include "desktop/x11/x11_workspace.h"
#include "support/fake_workspace.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"
#include "support/test_window.h"

namespace tavrelon::testing {

namespace {

using platform::RunningApplication;

/// A desktop on which a test opens windows: what the suite needs of the fake and of the real workspace alike.
class WorkspaceWorld {
 public:
    enum class Process { Ours, Another };

    virtual ~WorkspaceWorld() = default;

    /// Starts without a window.
    virtual platform::Workspace& workspace() = 0;

    /// Opens a window that gets the focus, and gives the number of its process.
    virtual qint64 openWindow(Process process, const QString& windowClass, const QString& title) = 0;

    /// Ends the process with all its windows.
    virtual void endProcess(qint64 processIdentifier) = 0;
};

class FakeWorkspaceWorld : public WorkspaceWorld {
 public:
    platform::Workspace& workspace() override { return workspace_; }
    qint64 openWindow(Process process, const QString& windowClass, const QString& title) override {
        const auto number = process == Process::Ours ? FakeWorkspace::ownProcessIdentifier : ++lastProcess_;
        workspace_.focus({.processIdentifier = number,
                          .bundleIdentifier = windowClass,
                          .localizedName = windowClass,
                          .windowIdentifier = ++lastWindow_},
                         title);
        return number;
    }
    void endProcess(qint64 processIdentifier) override {
        platform::RunningApplication ended;
        ended.processIdentifier = processIdentifier;
        workspace_.terminate(ended);
    }

 private:
    FakeWorkspace workspace_;
    qint64 lastProcess_ = 9000;
    quint64 lastWindow_ = 100;
};

class X11WorkspaceWorld : public WorkspaceWorld {
 public:
    ~X11WorkspaceWorld() override {
        windows_.clear();
        for (auto& entry : processes_) {
            entry.second->kill();
            entry.second->waitForFinished();
        }
    }
    platform::Workspace& workspace() override { return *workspace_; }
    qint64 openWindow(Process process, const QString& windowClass, const QString& title) override {
        const auto number = process == Process::Ours ? qint64{::getpid()} : startProcess();
        windows_.emplace(
            number,
            std::make_unique<TestWindow>(TestWindowProperties{
                .processIdentifier = number, .machine = thisMachine(), .windowClass = windowClass, .title = title}));
        return number;
    }
    void endProcess(qint64 processIdentifier) override {
        windows_.erase(processIdentifier);
        const auto process = processes_.extract(processIdentifier);
        process.mapped()->kill();
        process.mapped()->waitForFinished();
    }

 private:
    qint64 startProcess() {
        auto process = std::make_unique<QProcess>();
        process->start(QStringLiteral("sleep"), {QStringLiteral("60")});
        process->waitForStarted();
        const auto number = process->processId();
        processes_.emplace(number, std::move(process));
        return number;
    }

    std::unique_ptr<desktop::X11Workspace> workspace_ = desktop::X11Workspace::create().value();
    std::map<qint64, std::unique_ptr<QProcess>> processes_;
    std::multimap<qint64, std::unique_ptr<TestWindow>> windows_;
};

using Process = WorkspaceWorld::Process;

class WorkspaceContract : public ::testing::TestWithParam<bool> {
 public:
    std::unique_ptr<WorkspaceWorld> world = GetParam()
                                                ? std::unique_ptr<WorkspaceWorld>(std::make_unique<X11WorkspaceWorld>())
                                                : std::make_unique<FakeWorkspaceWorld>();
    platform::Workspace& workspace = world->workspace();

    /// Opens a window and gives the application once it is in front.
    RunningApplication open(WorkspaceWorld::Process process, const QString& windowClass, const QString& title) {
        const auto number = world->openWindow(process, windowClass, title);
        EXPECT_TRUE(runQtUntil([&] { return workspace.frontmostWindowTitle() == title; })) << "no such window";
        const auto found = workspace.frontmostApplication();
        EXPECT_TRUE(found && found->processIdentifier == number);
        return found.value_or(RunningApplication{});
    }
};

TEST_P(WorkspaceContract, WithoutAWindowNothingIsInFront) {
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.frontmostWindow(), std::nullopt);
    EXPECT_EQ(workspace.frontmostWindowTitle(), std::nullopt);
    EXPECT_EQ(workspace.frontmostWindowPlace(), std::nullopt);
    EXPECT_FALSE(workspace.isOwnApplicationActive());
}

TEST_P(WorkspaceContract, TheFocusedWindowNamesItsApplication) {
    const auto other = open(Process::Another, QStringLiteral("Unheard-of"), QStringLiteral("Brief 回复 ✉"));
    EXPECT_EQ(other.bundleIdentifier, QStringLiteral("Unheard-of"));
    EXPECT_EQ(other.localizedName, QStringLiteral("Unheard-of"));
    EXPECT_NE(other.windowIdentifier, 0U);
    EXPECT_EQ(workspace.frontmostWindow(),
              (platform::FrontmostWindow{other.windowIdentifier, other.processIdentifier}));
    const auto place = workspace.frontmostWindowPlace();
    EXPECT_TRUE(place && place->width > 0 && place->height > 0 && place->shadow == platform::WindowPlace::Shadow());
    EXPECT_FALSE(workspace.isOwnApplicationActive());

    const auto own = open(Process::Ours, QStringLiteral("Tavrelon"), QStringLiteral("Dashboard"));
    EXPECT_TRUE(workspace.isOwnApplicationActive());
    EXPECT_NE(own.windowIdentifier, other.windowIdentifier);
}

TEST_P(WorkspaceContract, AnActivatedApplicationComesToTheFront) {
    const auto first = open(Process::Another, QStringLiteral("First"), QStringLiteral("one"));
    const auto own = open(Process::Ours, QStringLiteral("Tavrelon"), QStringLiteral("two"));
    EXPECT_TRUE(workspace.activate(first));
    EXPECT_TRUE(runQtUntil([&] { return workspace.frontmostApplication() == first; }));
    EXPECT_TRUE(runQtUntil([&] { return workspace.hasKeyboard(first); }));
    EXPECT_FALSE(workspace.hasKeyboard(own));
    EXPECT_TRUE(workspace.activate(own));
    EXPECT_TRUE(runQtUntil([&] { return workspace.isOwnApplicationActive(); }));
}

TEST_P(WorkspaceContract, AnEndedApplicationIsTerminatedAndCannotBeActivated) {
    const auto other = open(Process::Another, QStringLiteral("Short-lived"), QStringLiteral("soon gone"));
    EXPECT_FALSE(workspace.isTerminated(other));
    world->endProcess(other.processIdentifier);
    EXPECT_TRUE(runQtUntil([&] { return workspace.isTerminated(other); }));
    EXPECT_FALSE(workspace.activate(other));
    EXPECT_TRUE(runQtUntil([&] { return !workspace.frontmostApplication(); }));
}

TEST_P(WorkspaceContract, AnAddressThatIsNoneIsNotOpened) {
    EXPECT_FALSE(workspace.openUrl(QUrl()));
}

INSTANTIATE_TEST_SUITE_P(OnTheFakeAndOnAServer, WorkspaceContract, ::testing::Bool());

}  // namespace

}  // namespace tavrelon::testing
