#include "program/check_report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "desktop/linux/process/standard_output_log.h"

namespace tavrelon::program {

namespace {

constexpr int subjectWidth = 16;

QString told(const CheckReport::Finding& finding) {
    return finding ? *finding : finding.error();
}

}  // namespace

int CheckReport::missing() const {
    return static_cast<int>(std::ranges::count_if(entries_, [](const Entry& entry) { return !entry.finding; }));
}

QByteArray CheckReport::text(ReportForm form) const {
    return form == ReportForm::Json ? json() : lines();
}

QByteArray CheckReport::lines() const {
    QByteArray all = "Tavrelon " TAVRELON_VERSION "\n";
    for (const auto& [subject, finding] : entries_)
        all += desktop::escapedLine(
                   QStringLiteral("%1 %2%3").arg(finding ? QStringLiteral("ok     ") : QStringLiteral("MISSING"),
                                                 subject.leftJustified(subjectWidth), told(finding))) +
               '\n';
    const auto count = missing();
    return all + (count == 0 ? "Everything works.\n" : QByteArray::number(count) + " missing.\n");
}

QByteArray CheckReport::json() const {
    QJsonArray checks;
    for (const auto& [subject, finding] : entries_)
        checks.append(QJsonObject{{QStringLiteral("subject"), subject},
                                  {QStringLiteral("works"), finding.has_value()},
                                  {QStringLiteral("says"), told(finding)}});
    return QJsonDocument(QJsonObject{{QStringLiteral("version"), QStringLiteral(TAVRELON_VERSION)},
                                     {QStringLiteral("missing"), missing()},
                                     {QStringLiteral("checks"), checks}})
        .toJson(QJsonDocument::Indented);
}

}  // namespace tavrelon::program
