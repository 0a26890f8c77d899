#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/atspi/atspi_protocol.h"
#include "platform/log.h"

class QThread;

namespace tavrelon::desktop::atspi {

struct TrackerState;
class TrackerThread;

/// Keeps the connection to the accessibility bus and follows the focus of all applications, on a thread of its own.
/// It switches accessibility on in the session, connects again when the bus went away, and finds out when an
/// application that did not answer answers again. Its operations may be called from any thread and do not wait, but
/// `bus` for as long as it is told.
class AtspiTracker {
 public:
    struct Bus {
        QDBusConnection connection;
        quint64 generation;  ///< grows with every new connection; bus names of an earlier one mean nothing
    };

    /// `log` gets one line if there is no bus at start. It must outlive the tracker.
    explicit AtspiTracker(platform::Log& log);

    /// Stops the thread; a bus that does not answer cannot hold it up for more than two seconds.
    ~AtspiTracker();
    AtspiTracker(const AtspiTracker&) = delete;
    AtspiTracker& operator=(const AtspiTracker&) = delete;

    /// The connection, absent when there is none. Only while the very first attempt is under way it waits, at most for
    /// `patience`, and once in vain at most.
    std::optional<Bus> bus(std::chrono::nanoseconds patience) const;

    /// A number that another one takes the place of whenever an application joins the bus or leaves it.
    quint64 applicationsRevision() const;

    /// The elements that said last that they have the focus, one of each application, the latest first.
    std::vector<ObjectReference> focusedElements() const;

    /// Has `handler` run on the tracker's thread each time an element says that it has the focus, in place of an
    /// earlier one, which is not under way any more afterwards.
    void onFocus(std::function<void()> handler);

    /// Enters an element that was found in another way, unless its application spoke since `before` was its element.
    void adopt(const ObjectReference& element, const std::optional<ObjectReference>& before);

    /// Takes an application for hung until it answers `probe`, which must be a call that changes nothing.
    void markHung(const QString& busName, const QDBusMessage& probe);
    bool isHung(const QString& busName) const;
    std::vector<QString> hungNames() const;

 private:
    std::shared_ptr<TrackerState> state_;
    QThread* thread_;        // left behind, with the state, if it cannot be stopped
    TrackerThread* worker_;  // dies with the thread
};

}  // namespace tavrelon::desktop::atspi
