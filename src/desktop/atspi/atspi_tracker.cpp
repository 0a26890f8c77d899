#include "desktop/atspi/atspi_tracker.h"

#include <QThread>

#include "desktop/atspi/atspi_tracker_thread.h"

namespace tavrelon::desktop::atspi {

using namespace std::chrono_literals;

AtspiTracker::AtspiTracker(platform::Log& log)
    : state_(std::make_shared<TrackerState>()), thread_(new QThread), worker_(new TrackerThread(state_)) {
    state_->log = &log;
    thread_->setObjectName(QStringLiteral("accessibility"));
    worker_->moveToThread(thread_);
    QObject::connect(thread_, &QThread::started, worker_, &TrackerThread::start);
    QObject::connect(thread_, &QThread::finished, worker_, &QObject::deleteLater);
    thread_->start();
}

AtspiTracker::~AtspiTracker() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->log = nullptr;
        state_->focusHandler = nullptr;
        state_->connection.reset();
    }
    thread_->quit();
    if (thread_->wait(QDeadlineTimer(2s)))
        delete thread_;
    else
        QObject::connect(thread_, &QThread::finished, thread_, &QObject::deleteLater);
}

std::optional<AtspiTracker::Bus> AtspiTracker::bus(std::chrono::nanoseconds patience) const {
    std::unique_lock lock(state_->mutex);
    const bool decided = state_->firstAttemptDone.wait_for(
        lock, patience, [&] { return state_->firstAttempt != FirstAttempt::UnderWay; });
    if (!decided && patience > std::chrono::nanoseconds::zero())
        state_->firstAttempt = FirstAttempt::Overdue;
    if (!state_->connection)
        return std::nullopt;
    return Bus{*state_->connection, state_->generation};
}

quint64 AtspiTracker::applicationsRevision() const {
    const std::lock_guard lock(state_->mutex);
    return state_->applications;
}

std::vector<ObjectReference> AtspiTracker::focusedElements() const {
    const std::lock_guard lock(state_->mutex);
    return state_->focus.elements();
}

void AtspiTracker::onFocus(std::function<void()> handler) {
    const std::lock_guard lock(state_->mutex);
    state_->focusHandler = std::move(handler);
}

void AtspiTracker::adopt(const ObjectReference& element, const std::optional<ObjectReference>& before) {
    const std::lock_guard lock(state_->mutex);
    state_->focus.found(element, before);
}

void AtspiTracker::markHung(const QString& busName, const QDBusMessage& probe) {
    {
        const std::lock_guard lock(state_->mutex);
        if (!state_->hung.insert(busName).second)
            return;
    }
    QMetaObject::invokeMethod(worker_, [worker = worker_, busName, probe] { worker->probe(busName, probe); });
}

bool AtspiTracker::isHung(const QString& busName) const {
    const std::lock_guard lock(state_->mutex);
    return state_->hung.contains(busName);
}

std::vector<QString> AtspiTracker::hungNames() const {
    const std::lock_guard lock(state_->mutex);
    return {state_->hung.begin(), state_->hung.end()};
}

}  // namespace tavrelon::desktop::atspi
