#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include "desktop/running_editor.h"
#include "support/stand_in_service.h"

namespace tavrelon::testing {

/// The program itself, started as its user would start it, with a model service of the test's own.
class RunningTavrelon {
 public:
    /// Starts it and waits until it listens. Throws when it does not.
    explicit RunningTavrelon(StandInService& service);
    ~RunningTavrelon();

    QString log() const;
    int logged(const QString& line) const;
    bool waitForLog(const QString& line, int times);

    /// How many requests the history holds on disk.
    int historyCount() const;
    QString newestHistoryId() const;

    /// Ends it as a logout would, and gives its exit status.
    int terminate();

 private:
    QTemporaryDir home_;
    mutable QProcess process_;
};

}  // namespace tavrelon::testing
