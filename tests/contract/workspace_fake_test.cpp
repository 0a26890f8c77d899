#include "contract/workspace_contract.h"
#include "support/fake_workspace.h"

namespace tavrelon::testing {

namespace {

class FakeWorld : public WorkspaceWorld {
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
    bool becomesTrue(const std::function<bool()>& condition) override { return condition(); }

 private:
    FakeWorkspace workspace_;
    qint64 lastProcess_ = 9000;
    quint64 lastWindow_ = 100;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, WorkspaceContract,
                         ::testing::Values(WorkspaceWorldFactory([] { return std::make_unique<FakeWorld>(); })),
                         [](const auto&) { return "InMemory"; });

}  // namespace tavrelon::testing
