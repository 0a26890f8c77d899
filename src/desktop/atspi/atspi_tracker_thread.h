#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "desktop/atspi/focus_book.h"
#include "platform/log.h"

namespace tavrelon::desktop::atspi {

/// Of the first connection: overdue once somebody waited for it in vain.
enum class FirstAttempt { UnderWay, Overdue, Done };

/// What the tracker's thread knows, for all threads.
struct TrackerState {
    std::mutex mutex;  // guards all that follows
    platform::Log* log = nullptr;
    FirstAttempt firstAttempt = FirstAttempt::UnderWay;
    std::condition_variable firstAttemptDone;
    std::optional<QDBusConnection> connection;
    quint64 generation = 0;
    quint64 applications = 0;  // grows whenever one joins the bus or leaves it
    FocusBook focus;
    std::set<QString> hung;
    std::function<void()> focusHandler;  // runs under the mutex and must return at once
};

/// The tracker's work. Lives on the tracker's thread, where all of its operations run.
class TrackerThread : public QObject {
    Q_OBJECT

 public:
    explicit TrackerThread(std::shared_ptr<TrackerState> state);
    ~TrackerThread() override;

    void start();
    /// Asks again and again until the application answers, then takes its mark back.
    void probe(const QString& busName, const QDBusMessage& call);

 private Q_SLOTS:
    void stateChanged(const QDBusMessage& signal);
    void applicationsChanged();
    void nameOwnerChanged(const QString& name, const QString& before, const QString& after);
    void disconnected();

 private:
    using Done = std::function<void(const QDBusMessage& reply)>;

    void call(const QDBusConnection& connection, const QDBusMessage& message, std::chrono::milliseconds timeout,
              Done done);
    void probe(const QString& busName, const QDBusMessage& call, std::chrono::milliseconds timeout);
    void connectTo(const QString& address);
    void follow(QDBusConnection& connection);
    void registerFor(const QDBusConnection& connection, const char* event);
    void failed(const QString& reason);
    void leave();

    std::shared_ptr<TrackerState> state_;
    QString sessionName_;
    QString busName_;
    std::chrono::milliseconds nextDelay_;
};

}  // namespace tavrelon::desktop::atspi
