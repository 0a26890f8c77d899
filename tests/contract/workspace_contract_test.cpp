#include "contract/workspace_contract.h"

namespace tavrelon::testing {

using platform::RunningApplication;
using Process = WorkspaceWorld::Process;

namespace {

TEST_P(WorkspaceContract, WithoutAWindowNothingIsInFront) {
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.frontmostWindowTitle(), std::nullopt);
    EXPECT_EQ(workspace.frontmostWindowPlace(), std::nullopt);
    EXPECT_FALSE(workspace.isOwnApplicationActive());
}

TEST_P(WorkspaceContract, TheFocusedWindowNamesItsApplication) {
    const auto other = open(Process::Another, QStringLiteral("Unheard-of"), QStringLiteral("Brief 回复 ✉"));
    EXPECT_EQ(other.bundleIdentifier, QStringLiteral("Unheard-of"));
    EXPECT_EQ(other.localizedName, QStringLiteral("Unheard-of"));
    EXPECT_NE(other.windowIdentifier, 0U);
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
    EXPECT_TRUE(world->becomesTrue([&] { return workspace.frontmostApplication() == first; }));
    EXPECT_TRUE(world->becomesTrue([&] { return workspace.hasKeyboard(first); }));
    EXPECT_FALSE(workspace.hasKeyboard(own));
    EXPECT_TRUE(workspace.activate(own));
    EXPECT_TRUE(world->becomesTrue([&] { return workspace.isOwnApplicationActive(); }));
}

TEST_P(WorkspaceContract, AnEndedApplicationIsTerminatedAndCannotBeActivated) {
    const auto other = open(Process::Another, QStringLiteral("Short-lived"), QStringLiteral("soon gone"));
    EXPECT_FALSE(workspace.isTerminated(other));
    world->endProcess(other.processIdentifier);
    EXPECT_TRUE(world->becomesTrue([&] { return workspace.isTerminated(other); }));
    EXPECT_FALSE(workspace.activate(other));
    EXPECT_TRUE(world->becomesTrue([&] { return !workspace.frontmostApplication(); }));
}

TEST_P(WorkspaceContract, AnAddressThatIsNoneIsNotOpened) {
    EXPECT_FALSE(workspace.openUrl(QUrl()));
}

}  // namespace

}  // namespace tavrelon::testing
