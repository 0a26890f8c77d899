#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include "desktop/running_editor.h"
#include "support/stand_in_service.h"
#include "text/json.h"

namespace tavrelon::testing {

/// The program itself, started as its user would start it, with a model service of the test's own.
class RunningTavrelon {
 public:
    enum class Dashboard { Closed, Open };

    /// How it finds its user's folders.
    struct Setting {
        text::Json settings = text::Json::object();                        ///< beside those that name the service
        std::function<void(const QString& applicationSupport)> install{};  ///< puts files there
    };

    /// Starts it, with its dashboard or in the background, and waits until it listens and shows what it is to show.
    /// Throws when nothing of the kind happens.
    explicit RunningTavrelon(StandInService& service, Dashboard dashboard = Dashboard::Closed)
        : RunningTavrelon(service, Setting(), dashboard) {}
    RunningTavrelon(StandInService& service, const Setting& setting, Dashboard dashboard = Dashboard::Closed);
    ~RunningTavrelon();

    QString log() const;
    int logged(const QString& line) const;
    bool waitForLog(const QString& line, int times);

    /// The folder of its settings, its data and its log.
    QString home() const { return home_.path(); }

    qint64 process() const { return process_.processId(); }

    /// How many requests the history holds on disk.
    int historyCount() const;
    QString newestHistoryId() const;

    /// Ends it as a logout would, and gives its exit status.
    int terminate();

    /// Whether the dashboard is on the screen.
    static bool isDashboardOpen();

    /// The stored settings.
    text::Json settings() const;

 private:
    QTemporaryDir home_;
    mutable QProcess process_;
};

}  // namespace tavrelon::testing
