#pragma once

#include <algorithm>
#include <chrono>
#include <expected>
#include <map>
#include <optional>
#include <vector>

#include "desktop/atspi/atspi_tracker.h"
#include "desktop/atspi/field_text.h"

namespace tavrelon::desktop::atspi {

/// Time that may be spent waiting; what is spent is gone.
class Allowance {
 public:
    explicit Allowance(std::chrono::nanoseconds total) : left_(total) {}
    std::chrono::nanoseconds left() const { return left_; }
    void spend(std::chrono::nanoseconds spent) { left_ -= std::min(left_, spent); }

 private:
    std::chrono::nanoseconds left_;
};

/// Calls to other applications over the accessibility bus, as many together as depend on nothing of one another. Main
/// thread, which waits without running its event loop; never longer than the allowance. An application that leaves a
/// call unanswered is marked as hung, and calls to a hung one are not sent.
class AtspiCalls {
 public:
    using Reply = std::expected<QDBusMessage, platform::AXError>;

    AtspiCalls(AtspiTracker& tracker, Allowance& allowance) : tracker_(tracker), allowance_(allowance) {}

    /// The replies, in the order of the messages. `APIDisabled` when there is no bus.
    std::vector<Reply> send(const std::vector<QDBusMessage>& messages);
    Reply send(const QDBusMessage& message) { return std::move(send(std::vector{message}).front()); }

    AtspiTracker& tracker() const { return tracker_; }
    Allowance& allowance() const { return allowance_; }

 private:
    void markHung(const QDBusMessage& message);

    AtspiTracker& tracker_;
    Allowance& allowance_;
};

/// What changes seldom about the bus and never about a connection to it, asked for once. Main thread.
class AtspiDirectory {
 public:
    /// Forgets everything if the bus is another one than before.
    void enter(quint64 generation);

    /// The roots of all applications on the bus. Asked anew only after one joined or left: a field is looked for before
    /// each key of an answer, and many a window's program is not on the bus.
    std::expected<std::vector<ObjectReference>, platform::AXError> applications(AtspiCalls& calls);

    /// Of some elements those whose application has its windows from this process. From within a sandbox programs
    /// reach the bus through a proxy, whose process the bus takes for theirs.
    std::vector<ObjectReference> ofProcess(qint64 process, std::vector<ObjectReference> elements, AtspiCalls& calls);

    /// Whether the bus name is known to be of the process, without asking.
    bool isKnownAs(qint64 process, const QString& busName) const;

    std::expected<Toolkit, platform::AXError> toolkitOf(const QString& busName, AtspiCalls& calls);

 private:
    /// The process that has a connection, as the bus tells, and the sandbox it is in, if it is in one.
    struct Owner {
        qint64 process = 0;
        QByteArray sandbox;

        bool isOf(qint64 other, const QByteArray& othersSandbox) const {
            return process == other || (!sandbox.isEmpty() && sandbox == othersSandbox);
        }
    };

    quint64 generation_ = 0;
    quint64 applicationsRevision_ = 0;
    std::optional<std::vector<ObjectReference>> applications_;
    std::map<QString, Owner> owners_;
    std::map<QString, Toolkit> toolkits_;
};

}  // namespace tavrelon::desktop::atspi
