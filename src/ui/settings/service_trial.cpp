#include "ui/settings/service_trial.h"

namespace tavrelon::ui {

QString ServiceTrial::outcome() const {
    return !last_ ? QString() : last_->answer ? *last_->answer : last_->answer.error().in(language_());
}

QString ServiceTrial::seconds() const {
    return last_ ? QString::number(static_cast<double>(last_->taken.count()) / 1000, 'f', 1) : QString();
}

void ServiceTrial::start() {
    if (isBusy_)
        return;
    isBusy_ = true;
    last_.reset();
    running_ = tasks_.spawn(ask());
    Q_EMIT changed();
}

void ServiceTrial::forget() {
    if (!isBusy_ && !last_)
        return;
    if (running_)
        running_->cancel();
    running_.reset();
    isBusy_ = false;
    last_.reset();
    Q_EMIT changed();
}

async::Task<void> ServiceTrial::ask() {
    try {
        last_ = co_await app::testService(service_, loop_);
    } catch (const async::CancellationError&) {
        co_return;
    }
    isBusy_ = false;
    Q_EMIT changed();
}

}  // namespace tavrelon::ui
