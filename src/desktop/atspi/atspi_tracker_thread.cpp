#include "desktop/atspi/atspi_tracker_thread.h"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QTimer>
#include <QUuid>
#include <vector>

#include "desktop/linux/process/bus_state.h"

namespace tavrelon::desktop::atspi {

using namespace std::chrono_literals;

namespace {

constexpr auto launcherTimeout = 10s;  // the launcher may have to be started first
constexpr auto busTimeout = 1s;

/// How long the first probe of a hung application may take and the later ones at most. The first is short since an
/// application that is only just starting may lose a question for good; the later ones are longer so that few pile up
/// before one that is stopped.
constexpr std::chrono::milliseconds firstProbeTimeout = 500ms;
constexpr std::chrono::milliseconds longestProbeTimeout = 60s;

constexpr auto firstDelay = 1s;
constexpr auto longestDelay = 30s;

/// The toolkits send the news of the focus with different signatures. A null one accepts them all; an empty one would
/// accept only a signal without arguments.
const QString anySignature;

struct FollowedSignal {
    QString path;
    QString interface;
    QString name;
    QStringList arguments;
    const char* slot;
};

std::vector<FollowedSignal> followedSignals() {
    return {{{},
             QStringLiteral("org.a11y.atspi.Event.Object"),
             QStringLiteral("StateChanged"),
             {QStringLiteral("focused")},
             SLOT(stateChanged(QDBusMessage))},
            {QLatin1String(rootPath),
             QStringLiteral("org.a11y.atspi.Event.Object"),
             QStringLiteral("ChildrenChanged"),
             {},
             SLOT(applicationsChanged())},
            {QStringLiteral("/org/freedesktop/DBus"),
             QStringLiteral("org.freedesktop.DBus"),
             QStringLiteral("NameOwnerChanged"),
             {},
             SLOT(nameOwnerChanged(QString, QString, QString))},
            {QStringLiteral("/org/freedesktop/DBus/Local"),
             QStringLiteral("org.freedesktop.DBus.Local"),
             QStringLiteral("Disconnected"),
             {},
             SLOT(disconnected())}};
}

QString connectionName(const char* bus) {
    return QLatin1String(bus) + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

}  // namespace

TrackerThread::TrackerThread(std::shared_ptr<TrackerState> state)
    : state_(std::move(state)),
      sessionName_(connectionName("tavrelon-session-")),
      busName_(connectionName("tavrelon-accessibility-")),
      nextDelay_(firstDelay) {}

TrackerThread::~TrackerThread() {
    leave();
    QDBusConnection::disconnectFromBus(sessionName_);
}

void TrackerThread::start() {
    QDBusConnection session(sessionName_);
    if (!session.isConnected()) {
        QDBusConnection::disconnectFromBus(sessionName_);
        if (busState(sessionBusAddress(), busTimeout) == BusState::Silent)
            return failed(QStringLiteral("the session bus does not answer"));
        session = QDBusConnection::connectToBus(QDBusConnection::SessionBus, sessionName_);
    }
    if (!session.isConnected())
        return failed(session.lastError().message());

    // Several toolkits answer only while this is on, some look at it only when they start. The neighbouring switch for
    // screen readers stays as it is: setting it makes some desktops start one.
    const auto enable = QVariant::fromValue(QDBusVariant(true));
    auto set = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                              QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"));
    set.setArguments({QStringLiteral("org.a11y.Status"), QStringLiteral("IsEnabled"), enable});
    call(session, set, launcherTimeout, [](const QDBusMessage&) {});

    const auto ask = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                                    QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"));
    call(session, ask, launcherTimeout, [this](const QDBusMessage& reply) {
        if (const auto address = textOf(reply); address && reply.type() == QDBusMessage::ReplyMessage)
            connectTo(*address);
        else
            failed(reply.errorMessage());
    });
}

void TrackerThread::call(const QDBusConnection& connection, const QDBusMessage& message,
                         std::chrono::milliseconds timeout, Done done) {
    auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(message, static_cast<int>(timeout.count())), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, done = std::move(done)] {
        watcher->deleteLater();
        done(watcher->reply());
    });
}

void TrackerThread::connectTo(const QString& address) {
    if (busState(address, busTimeout) != BusState::Speaks)
        return failed(QStringLiteral("the bus does not answer"));
    auto connection = QDBusConnection::connectToBus(address, busName_);
    if (!connection.isConnected())
        return failed(connection.lastError().message());
    follow(connection);
    nextDelay_ = firstDelay;
    const std::lock_guard lock(state_->mutex);
    if (!state_->log)
        return;  // the owner is gone
    state_->connection = connection;
    ++state_->generation;
    ++state_->applications;
    state_->firstAttempt = FirstAttempt::Done;
    state_->firstAttemptDone.notify_all();
}

void TrackerThread::follow(QDBusConnection& connection) {
    for (const auto& signal : followedSignals())
        connection.connect({}, signal.path, signal.interface, signal.name, signal.arguments, anySignature, this,
                           signal.slot);
    registerFor(connection, "object:state-changed:focused");
    registerFor(connection, "window:activate");
}

void TrackerThread::registerFor(const QDBusConnection& connection, const char* event) {
    auto message =
        QDBusMessage::createMethodCall(QLatin1String(registryName), QStringLiteral("/org/a11y/atspi/registry"),
                                       QLatin1String(registryName), QStringLiteral("RegisterEvent"));
    message.setArguments({QString::fromLatin1(event)});
    call(connection, message, launcherTimeout, [](const QDBusMessage&) {});
}

void TrackerThread::failed(const QString& reason) {
    leave();
    {
        const std::lock_guard lock(state_->mutex);
        if (state_->firstAttempt != FirstAttempt::Done && state_->log)
            state_->log->line(QStringLiteral("[Accessibility] No accessibility bus, the fields of other applications "
                                             "cannot be read: %1")
                                  .arg(reason));
        state_->firstAttempt = FirstAttempt::Done;
        state_->firstAttemptDone.notify_all();
    }
    QTimer::singleShot(nextDelay_, this, &TrackerThread::start);
    nextDelay_ = std::min<std::chrono::milliseconds>(nextDelay_ * 2, longestDelay);
}

void TrackerThread::leave() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->connection.reset();
        state_->focus.clear();
        state_->hung.clear();
    }
    // A connection that is closed while it still delivers signals leaves events behind that refer to it.
    if (QDBusConnection connection(busName_); connection.isConnected())
        for (const auto& signal : followedSignals())
            connection.disconnect({}, signal.path, signal.interface, signal.name, signal.arguments, anySignature, this,
                                  signal.slot);
    QDBusConnection::disconnectFromBus(busName_);
}

void TrackerThread::disconnected() {
    failed({});
}

void TrackerThread::stateChanged(const QDBusMessage& signal) {
    if (signal.arguments().size() < 2)
        return;
    const ObjectReference element{signal.service(), signal.path()};
    const bool gained = signal.arguments().at(1).toInt() != 0;
    const std::lock_guard lock(state_->mutex);
    if (!gained)
        return state_->focus.lost(element);
    state_->focus.gained(element);
    if (state_->focusHandler)
        state_->focusHandler();
}

void TrackerThread::applicationsChanged() {
    const std::lock_guard lock(state_->mutex);
    ++state_->applications;
}

void TrackerThread::nameOwnerChanged(const QString& name, const QString&, const QString& after) {
    if (!after.isEmpty())
        return;
    const std::lock_guard lock(state_->mutex);
    ++state_->applications;
    state_->focus.forget(name);
    state_->hung.erase(name);
}

void TrackerThread::probe(const QString& busName, const QDBusMessage& message) {
    probe(busName, message, firstProbeTimeout);
}

void TrackerThread::probe(const QString& busName, const QDBusMessage& message, std::chrono::milliseconds timeout) {
    const QDBusConnection connection(busName_);
    if (!connection.isConnected()) {
        const std::lock_guard lock(state_->mutex);
        state_->hung.erase(busName);
        return;
    }
    call(connection, message, timeout, [this, busName, message, timeout](const QDBusMessage& reply) {
        const bool silent = reply.type() == QDBusMessage::ErrorMessage &&
                            errorOf(reply.errorName()) == platform::AXError::CannotComplete;
        {
            const std::lock_guard lock(state_->mutex);
            if (!silent)
                state_->hung.erase(busName);
            if (!state_->hung.contains(busName))
                return;
        }
        probe(busName, message, std::min(timeout * 2, longestProbeTimeout));
    });
}

}  // namespace tavrelon::desktop::atspi
