#pragma once

#include "desktop/atspi/atspi_calls.h"

namespace tavrelon::desktop::atspi {

/// Finds the element with the focus in the application of a process: the tracked one if it still has the focus, else by
/// looking through the application's active window. Main thread; within the allowance of `calls`.
class AtspiFocusFinder {
 public:
    AtspiFocusFinder(AtspiCalls& calls, AtspiDirectory& directory) : calls_(calls), directory_(directory) {}

    /// `NoValue` when nothing has the focus or the application is not on the bus.
    std::expected<ObjectReference, platform::AXError> focusedElementOf(qint64 process);

    /// Whether a password field has the focus in an active window of whatever application: of one whose process is not
    /// that of its window, say.
    bool isPasswordFocused();

 private:
    using Objects = std::vector<ObjectReference>;

    struct Finding {
        ObjectReference object;
        bool holdsText = false;
    };
    using Found = std::expected<Finding, platform::AXError>;

    struct Node {
        ObjectReference object;
        StateSet states;
        quint32 role = 0;
    };

    std::optional<ObjectReference> trackedElementOf(qint64 process);
    bool hungApplicationHas(qint64 process) const;
    Found walk(qint64 process);
    Found walkApplication(const QString& busName);
    std::vector<Node> describe(const Objects& objects);
    Objects childrenOf(const std::vector<Node>& nodes);
    Objects activeWindows(const QString& busName);
    bool holdsText(const ObjectReference& object);

    AtspiCalls& calls_;
    AtspiDirectory& directory_;
};

}  // namespace tavrelon::desktop::atspi
