#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "platform/workspace.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

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

    /// Gives the desktop the time it needs until something is true. False when it does not become so.
    virtual bool becomesTrue(const std::function<bool()>& condition) = 0;
};

using WorkspaceWorldFactory = std::function<std::unique_ptr<WorkspaceWorld>()>;

class WorkspaceContract : public ::testing::TestWithParam<WorkspaceWorldFactory> {
 public:
    std::unique_ptr<WorkspaceWorld> world = GetParam()();
    platform::Workspace& workspace = world->workspace();

    /// Opens a window and gives the application once it is in front.
    platform::RunningApplication open(WorkspaceWorld::Process process, const QString& windowClass,
                                      const QString& title) {
        const auto number = world->openWindow(process, windowClass, title);
        EXPECT_TRUE(world->becomesTrue([&] { return workspace.frontmostWindowTitle() == title; })) << "no such window";
        const auto found = workspace.frontmostApplication();
        EXPECT_TRUE(found && found->processIdentifier == number);
        return found.value_or(platform::RunningApplication{});
    }
};

}  // namespace tavrelon::testing
