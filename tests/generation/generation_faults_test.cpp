// generation_faults_test [--write-table FILE | --only TEXT]: every call of the generation services meets everything
// that can go wrong with it, over real connections. What was seen is printed as a table, which must be the one that is
// kept in docs/;
// --write-table writes it instead; --only plays the faults whose names contain the text.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <iostream>

#include "generation/fault_stage.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace Qt::StringLiterals;

namespace {

QString fileToWrite;
QString only;

/// Above the largest body there may be, in the copies that reading it takes. The sanitizers keep freed memory.
constexpr qint64 mostMegabytes = __has_feature(address_sanitizer) ? 600 : 400;

QString toldTo(FaultSubject::Told told) {
    switch (told) {
        case FaultSubject::Told::ToTheUser:
            return u"the user reads"_s;
        case FaultSubject::Told::ToTheUserWhenAlone:
            return u"the user reads, when nothing else answers"_s;
        case FaultSubject::Told::InTheLog:
            return u"the log says"_s;
    }
    std::unreachable();
}

QString lineOf(const Fault& fault, const QStringList& cells) {
    return "| "_L1 + fault.name + " | "_L1 + cells.join(" | "_L1) + " |\n"_L1;
}

QString nextStep(const FaultSubject& subject, const FaultOutcome& outcome) {
    if (outcome.answered)
        return u"answered"_s;
    return subject.next.isEmpty() ? u"error"_s : "asks "_L1 + outcome.askedNext.join(", "_L1);
}

QString section(FaultStage& stage, const FaultSubject& subject) {
    QString table = "\n## "_L1 + subject.title + "\n\n| what happens | what comes next | "_L1 + toldTo(subject.told) +
                    " | after |\n|---|---|---|---|\n"_L1;
    const auto faults = faultsFor(subject.shape, stage.elsewhereAddress());
    EXPECT_GE(faults.size(), 40U) << subject.title.toStdString();
    qint64 most = 0;
    for (const auto& fault : faults) {
        if (!fault.name.contains(only))
            continue;
        SCOPED_TRACE((subject.title + ": "_L1 + fault.name).toStdString());
        QElapsedTimer took;
        took.start();
        const auto outcome = stage.play(subject, fault);
        EXPECT_EQ(outcome.broken, QString());
        EXPECT_LT(outcome.peakMegabytes, mostMegabytes);
        EXPECT_EQ(outcome.askedNext,
                  outcome.answered || subject.next.isEmpty() ? QStringList() : QStringList(subject.next));
        if (!outcome.answered && subject.told != FaultSubject::Told::InTheLog)
            EXPECT_TRUE(outcome.told.startsWith(u"Generation failed: "_s));
        table +=
            fault.dependsOnLuck
                ? lineOf(fault, {u"depends"_s, u"a lost connection, or what came counts as the whole answer"_s, {}})
                : lineOf(fault, {nextStep(subject, outcome), outcome.told, outcome.waited});
        most = std::max(most, outcome.peakMegabytes);
        if (!only.isNull())
            std::cout << fault.name.toStdString() << ": " << outcome.peakMegabytes << " MB, " << took.elapsed()
                      << " ms\n";
    }
    std::cout << subject.title.toStdString() << ": " << faults.size() << " faults, at most " << most << " MB\n";
    return table;
}

}  // namespace

TEST(GenerationFaults, EndAsTheTableSays) {
    FaultStage stage;
    QString table = QString::fromUtf8(R"(# What generation makes of faults

Every call to a model service meets everything that can go wrong on its way. This table is what
`build/dev/tests/generation/generation_faults_test` sees over real connections, and that test fails when it sees
anything else; `--write-table docs/generation-faults.md` writes the table anew. The services before the faulty one are
down and those after it answer. "after" is the time that a silent service costs.
)");
    for (const auto& subject : faultSubjects())
        table += section(stage, subject);
    std::cout << table.toStdString();
    if (!only.isNull())
        return;
    QFile file(fileToWrite.isEmpty() ? QStringLiteral(FAULTS_TABLE) : fileToWrite);
    if (!fileToWrite.isEmpty()) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(table.toUtf8());
        return;
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto kept = QString::fromUtf8(file.readAll()).split(u'\n');
    const auto seen = table.split(u'\n');
    EXPECT_EQ(kept.size(), seen.size());
    for (qsizetype line = 0; line < std::min(kept.size(), seen.size()); ++line)
        EXPECT_EQ(kept[line], seen[line]) << "line " << line + 1;
}

}  // namespace tavrelon::testing

namespace {

/// What Qt complains of is a fault of ours, and the user would find it in the log.
void failOnComplaint(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg)
        ADD_FAILURE() << "Qt complains: " << text.toStdString();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(failOnComplaint);
    ::testing::InitGoogleTest(&argc, argv);
    if (argc == 3 && std::string_view(argv[1]) == "--write-table")
        tavrelon::testing::fileToWrite = QString::fromLocal8Bit(argv[2]);
    if (argc == 3 && std::string_view(argv[1]) == "--only")
        tavrelon::testing::only = QString::fromLocal8Bit(argv[2]);
    return RUN_ALL_TESTS();
}
