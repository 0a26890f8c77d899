#pragma once

#include <QObject>

#include "app/service_test.h"
#include "async/task_scope.h"

namespace tavrelon::ui {

/// The button that asks the chosen service one short question, and what came of it. Main thread.
class ServiceTrial : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    Q_PROPERTY(bool hasFailed READ hasFailed NOTIFY changed)
    Q_PROPERTY(QString outcome READ outcome NOTIFY changed)
    Q_PROPERTY(QString source READ source NOTIFY changed)
    Q_PROPERTY(QString seconds READ seconds NOTIFY changed)

 public:
    /// `language` is that of the interface at the moment.
    ServiceTrial(async::MainLoop& loop, generation::PollinationsService& service,
                 std::function<text::Language()> language)
        : loop_(loop), service_(service), language_(std::move(language)), tasks_(loop) {}

    bool isBusy() const { return isBusy_; }
    bool hasFailed() const { return last_ && !last_->answer; }
    QString outcome() const;  ///< the answer, or the reason why there is none; empty before the first trial
    QString source() const { return last_ ? last_->source : QString(); }
    QString seconds() const;

    /// Nothing while a trial is under way.
    Q_INVOKABLE void start();

    /// Ends a trial: it says nothing of what is chosen now.
    void forget();

    Q_SIGNAL void changed();

 private:
    async::Task<void> ask();

    async::MainLoop& loop_;
    generation::PollinationsService& service_;
    std::function<text::Language()> language_;
    std::optional<app::ServiceTest> last_;
    std::optional<async::TaskHandle> running_;
    bool isBusy_ = false;
    async::TaskScope tasks_;
};

}  // namespace tavrelon::ui
