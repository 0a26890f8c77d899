#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include "desktop/documents/confinement.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;

namespace {

/// A descriptor that children inherit, as a library that forgets to close it would leave one.
class LeftOpen {
 public:
    LeftOpen() : number_(::fcntl(STDERR_FILENO, F_DUPFD, 50)) {}
    LeftOpen(const LeftOpen&) = delete;
    LeftOpen& operator=(const LeftOpen&) = delete;
    ~LeftOpen() { ::close(number_); }
    QString number() const { return QString::number(number_); }

 private:
    int number_;
};

}  // namespace

TEST(Confinement, WhatAFileMightHaveItsReaderDoIsRefused) {
    QTemporaryDir home;
    QFile secret(home.filePath(u"secret"_s));
    ASSERT_TRUE(secret.open(QIODevice::WriteOnly) && secret.write("secret") > 0);
    const LeftOpen leftOpen;
    QProcess probe;
    probe.start(QStringLiteral(CONFINEMENT_PROBE), {secret.fileName(), u"/usr/bin/env"_s, leftOpen.number()});
    ASSERT_TRUE(probe.waitForFinished(60'000));
    ASSERT_EQ(probe.exitStatus(), QProcess::NormalExit);

    const auto lines = QString::fromUtf8(probe.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    QStringList done;
    for (const auto& line : lines)
        if (line.endsWith(u" done"))
            done << line.section(u' ', 0, 0);
    QStringList allowed{u"read-system"_s, u"compute"_s};
    if (landlockVersion() == 0)  // such a kernel cannot keep files closed, and the program says so in its log
        allowed.prepend(u"read-secret"_s);
    ASSERT_TRUE(canFilterCalls());
    EXPECT_EQ(done, allowed);
    EXPECT_EQ(lines.size(), 15) << lines.join(u", ").toStdString();
    EXPECT_TRUE(QFile::exists(secret.fileName()));
}

/// The reader itself, while it waits for the markup of a page.
TEST(Confinement, TheReaderIsConfinedBeforeItSeesWhatItIsToRead) {
    const LeftOpen leftOpen;
    QProcess reader;
    reader.start(QStringLiteral(DOCUMENT_READER), {u"markup"_s});
    ASSERT_TRUE(reader.waitForStarted());
    const QDir process(u"/proc/%1"_s.arg(reader.processId()));
    QByteArray status;
    QElapsedTimer timer;
    for (timer.start(); !status.contains("Seccomp:\t2") && timer.elapsed() < 20'000; QThread::msleep(10)) {
        QFile file(process.filePath(u"status"_s));
        status = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    EXPECT_TRUE(status.contains("Seccomp:\t2")) << status.data();
    EXPECT_TRUE(status.contains("NoNewPrivs:\t1")) << status.data();
    const QDir descriptors(process.filePath(u"fd"_s));
    EXPECT_FALSE(
        descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).contains(leftOpen.number()));
    reader.write("<p>Hello</p>");
    reader.closeWriteChannel();
    ASSERT_TRUE(reader.waitForFinished(60'000));
    EXPECT_EQ(reader.readAllStandardOutput(), "Hello");
}

}  // namespace tavrelon::desktop
