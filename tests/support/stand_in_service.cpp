#include "support/stand_in_service.h"

#include <stdexcept>

#include "support/stand_in_service_connection.h"

namespace tavrelon::testing {

void StandInLedger::script(std::vector<StandInAnswer> answers) {
    const std::lock_guard lock(mutex_);
    for (auto& answer : answers)
        script_.push_back(std::move(answer));
}

void StandInLedger::setDefault(StandInAnswer answer) {
    const std::lock_guard lock(mutex_);
    default_ = std::move(answer);
}

void StandInLedger::reset() {
    const std::lock_guard lock(mutex_);
    script_.clear();
    default_ = {};
    forgotten_ += requests_.size();
    requests_.clear();
}

std::pair<std::size_t, StandInAnswer> StandInLedger::receive(const ReceivedRequest& request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
    const auto index = forgotten_ + requests_.size() - 1;
    for (auto answer = script_.begin(); answer != script_.end(); ++answer) {
        if (answer->fits(request)) {
            auto found = std::move(*answer);
            script_.erase(answer);
            return {index, std::move(found)};
        }
    }
    return {index, default_};
}

void StandInLedger::markAbandoned(std::size_t index) {
    const std::lock_guard lock(mutex_);
    if (index >= forgotten_)
        requests_.at(index - forgotten_).abandoned = true;
}

std::vector<ReceivedRequest> StandInLedger::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

StandInService::StandInService(quint16 port) {
    listener_ = new StandInListener(ledger_);
    listener_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, listener_, &QObject::deleteLater);
    thread_.start();
    QMetaObject::invokeMethod(
        listener_, [this, port] { port_ = listener_->listenOn(port); }, Qt::BlockingQueuedConnection);
    if (port_ == 0) {
        thread_.quit();
        thread_.wait();
        throw std::runtime_error("the stand-in service cannot listen on its port");
    }
}

StandInService::~StandInService() {
    thread_.quit();
    thread_.wait();
}

QString StandInService::url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port_).arg(path);
}

}  // namespace tavrelon::testing
