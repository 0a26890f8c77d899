#include <unistd.h>

#include <QProcess>
#include <map>

#include "contract/workspace_contract.h"
#include "desktop/x11/x11_workspace.h"
#include "support/run_task_on_qt.h"
#include "support/test_window.h"

namespace tavrelon::testing {

namespace {

class X11World : public WorkspaceWorld {
 public:
    ~X11World() override {
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
    bool becomesTrue(const std::function<bool()>& condition) override { return runQtUntil(condition); }

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

}  // namespace

INSTANTIATE_TEST_SUITE_P(Real, WorkspaceContract,
                         ::testing::Values(WorkspaceWorldFactory([] { return std::make_unique<X11World>(); })),
                         [](const auto&) { return "X11"; });

}  // namespace tavrelon::testing
