#pragma once

#include <QString>
#include <expected>
#include <vector>

#include "program/check.h"

namespace tavrelon::program {

/// What was looked at, one line each. Main thread.
class CheckReport {
 public:
    using Finding = std::expected<QString, QString>;  ///< what there is, or what is missing and what helps

    void add(const QString& subject, Finding finding) { entries_.push_back({subject, std::move(finding)}); }

    int missing() const;
    QByteArray text(ReportForm form) const;  ///< UTF-8, with a line end; what would steer a terminal is escaped

 private:
    struct Entry {
        QString subject;
        Finding finding;
    };

    QByteArray lines() const;
    QByteArray json() const;

    std::vector<Entry> entries_;
};

}  // namespace tavrelon::program
