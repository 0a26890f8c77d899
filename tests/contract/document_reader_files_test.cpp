#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "desktop/documents/document_process_reader.h"
#include "desktop/qt/qt_main_loop.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using platform::DocumentError;
using platform::DocumentFormat;
using Text = platform::DocumentReader::Text;

namespace {

/// A PDF with one page for each text; an empty text gives an empty page.
QByteArray pdf(const QList<QByteArray>& pages, const QByteArray& trailerEntries = {}) {
    QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>", {}, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"};
    QByteArray kids;
    for (const auto& text : pages) {
        const auto page = QByteArray::number(objects.size() + 1);
        const auto content = QByteArray::number(objects.size() + 2);
        kids += page + " 0 R ";
        objects << "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 600 800] /Resources << /Font << /F 3 0 R >> >> "
                   "/Contents " +
                       content + " 0 R >>";
        const auto drawing = text.isEmpty() ? QByteArray() : "BT /F 12 Tf 50 700 Td (" + text + ") Tj ET";
        objects << "<< /Length " + QByteArray::number(drawing.size()) + " >>\nstream\n" + drawing + "\nendstream";
    }
    objects[1] = "<< /Type /Pages /Kids [" + kids + "] /Count " + QByteArray::number(pages.size()) + " >>";

    QByteArray file = "%PDF-1.4\n";
    QByteArray table = "0000000000 65535 f \n";
    for (qsizetype number = 1; number <= objects.size(); ++number) {
        table += QByteArray::number(file.size()).rightJustified(10, '0') + " 00000 n \n";
        file += QByteArray::number(number) + " 0 obj\n" + objects[number - 1] + "\nendobj\n";
    }
    const auto start = QByteArray::number(file.size());
    const auto size = QByteArray::number(objects.size() + 1);
    return file + "xref\n0 " + size + "\n" + table + "trailer\n<< /Size " + size + " /Root 1 0 R " + trailerEntries +
           " >>\nstartxref\n" + start + "\n%%EOF\n";
}

class DocumentFiles : public ::testing::Test {
 public:
    QtMainLoop loop;
    QTemporaryDir directory;
    DocumentProcessReader reader{loop, QStringLiteral(DOCUMENT_READER)};
    DocumentProcessReader hasty{loop, QStringLiteral(DOCUMENT_READER), 2s};

    QString put(const QString& name, const QByteArray& content) {
        QFile file(directory.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    }
    Text read(const QString& path, DocumentFormat format) {
        return testing::runTaskOnQt(loop, reader.readFile(path, format));
    }

    /// A program that stands in for the document process.
    QString program(const QByteArray& script) {
        const auto path = put(u"program"_s, "#!/bin/sh\n" + script);
        EXPECT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner));
        return path;
    }
    void expectUnsupported(const Text& text) {
        ASSERT_FALSE(text) << text->size();
        EXPECT_EQ(text.error().code, DocumentError::Code::Unsupported);
    }
    /// A hostile document costs at most the limit and then gives some of its text or is refused.
    void expectBounded(const QString& path, DocumentFormat format) {
        QElapsedTimer timer;
        timer.start();
        const auto text = testing::runTaskOnQt(loop, hasty.readFile(path, format));
        EXPECT_LT(timer.elapsed(), 15'000);
        if (text)
            EXPECT_LE(text->size(), platform::DocumentReader::textCap);
        else
            expectUnsupported(text);
    }
};

}  // namespace

TEST_F(DocumentFiles, ATextIsGivenUpToTheCapAndADroppedReadingEnds) {
    EXPECT_EQ(read(put(u"a\nname é.txt"_s, "Grüße 你好 👋\n\nzwei"), DocumentFormat::PlainText),
              u"Grüße 你好 👋\n\nzwei"_s);
    constexpr auto cap = platform::DocumentReader::textCap;
    const auto path = put(u"long.txt"_s, QString(cap + 5, u'字').toUtf8());
    EXPECT_EQ(read(path, DocumentFormat::PlainText), QString(cap, u'字'));
    bool answered = false;
    {
        async::TaskScope scope(loop);
        scope.spawn([](DocumentProcessReader& from, QString name, bool& done) -> async::Task<void> {
            static_cast<void>(co_await from.readFile(std::move(name), DocumentFormat::PlainText));
            done = true;
        }(reader, path, answered));
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(read(path, DocumentFormat::PlainText));
    EXPECT_FALSE(answered);
}

TEST_F(DocumentFiles, APdfGivesTheTextOfItsPages) {
    const auto text = read(put(u"a.pdf"_s, pdf({"First page", "", "Third \\(page\\)"})), DocumentFormat::Pdf);
    ASSERT_TRUE(text);
    EXPECT_EQ(text->simplified(), u"First page Third (page)"_s);
    EXPECT_TRUE(text->endsWith(u'\n'));
    EXPECT_EQ(read(put(u"none.pdf"_s, pdf({})), DocumentFormat::Pdf), QString());
}

TEST_F(DocumentFiles, APdfThatIsLockedOrBrokenIsUnsupported) {
    const QByteArray lock = "/ID [<00><00>] /Encrypt << /Filter /Standard /V 1 /R 2 /P -4 /O <" +
                            QByteArray("ab").repeated(32) + "> /U <" + QByteArray("cd").repeated(32) + "> >>";
    expectUnsupported(read(put(u"locked.pdf"_s, pdf({"secret"}, lock)), DocumentFormat::Pdf));
    expectUnsupported(read(put(u"empty.pdf"_s, {}), DocumentFormat::Pdf));
    const auto whole = pdf({"some text"});
    for (qsizetype length = 0; length < whole.size(); length += 211)
        expectBounded(put(u"cut.pdf"_s, whole.first(length)), DocumentFormat::Pdf);
}

TEST_F(DocumentFiles, APdfOfThousandsOfPagesIsReadWithinBounds) {
    const QByteArray words = QByteArray("All work and no play. ").repeated(20);
    expectBounded(put(u"long.pdf"_s, pdf(QList<QByteArray>(5'000, words))), DocumentFormat::Pdf);
}

TEST_F(DocumentFiles, HtmlIsReadWithoutOpeningWhatItRefersTo) {
    const auto pipe = directory.filePath(u"pipe"_s);
    ASSERT_EQ(::mkfifo(qPrintable(pipe), 0600), 0);  // who opens it waits for ever
    const auto page =
        u"<html><head><title>T</title><link rel=stylesheet type='text/css' href='file://%1'>"
        "<style>@import url('%1'); p{color:red}</style><script>alert('x')</script></head>"
        "<body><p>Grüße<br>an&nbsp;<b>alle</b></p><img src='file://%1'><img src='%1'><ul><li>one</ul>"_s.arg(pipe);
    EXPECT_EQ(read(put(u"a.html"_s, page.toUtf8()), DocumentFormat::Html), u"Grüße\nan alle\none"_s);
    EXPECT_EQ(read(put(u"a.htm"_s, "<meta charset=gbk><p>\xc4\xe3\xba\xc3"), DocumentFormat::Html), u"你好"_s);
    EXPECT_EQ(read(put(u"fonts.html"_s, "<style>p{margin:1em}</style><p>a</p><pre>b</pre><code>c</code>"),
                   DocumentFormat::Html),
              u"a\nb\nc"_s)
        << "what asks for fonts";
    EXPECT_EQ(read(put(u"empty.html"_s, {}), DocumentFormat::Html), QString());
}

TEST_F(DocumentFiles, HostileHtmlCostsABoundedTime) {
    expectBounded(put(u"deep.html"_s, QByteArray("<div>").repeated(100'000) + "text"), DocumentFormat::Html);
    expectBounded(put(u"tables.html"_s, QByteArray("<table><tr><td>").repeated(100'000)), DocumentFormat::Html);
    expectBounded(put(u"large.html"_s, QByteArray("<p>some words in a paragraph</p>\n").repeated(1'600'000)),
                  DocumentFormat::Html);
}

TEST_F(DocumentFiles, RtfIsReadFromAFileOrFromItsFolder) {
    EXPECT_EQ(read(put(u"a.rtf"_s, "{\\rtf1\\ansi Dear \\u20320?}"), DocumentFormat::Rtf), u"Dear 你"_s);
    ASSERT_TRUE(QDir(directory.path()).mkdir(u"b.rtfd"_s));
    put(u"b.rtfd/TXT.rtf"_s, "{\\rtf1 inside}");
    EXPECT_EQ(read(directory.filePath(u"b.rtfd"_s), DocumentFormat::Rtf), u"inside"_s);
    EXPECT_EQ(read(put(u"c.rtf"_s, "caf\xe9 {no RTF}"), DocumentFormat::Rtf), u"café {no RTF}"_s);
    EXPECT_EQ(read(put(u"d.rtf"_s, "\n<HTML><p>Dear <b>Zoe</b>"), DocumentFormat::Rtf), u"Dear Zoe"_s);
    EXPECT_EQ(read(put(u"f.rtf"_s, QByteArray("\xff\xfe"
                                              "D\0e\0a\0r\0",
                                              10)),
                   DocumentFormat::Rtf),
              u"Dear"_s);
    expectUnsupported(read(put(u"e.rtf"_s, QByteArray("PK\3\4\0", 5)), DocumentFormat::Rtf));
}

TEST_F(DocumentFiles, WhatIsNoReadableFileIsToldWithItsPath) {
    const auto folder = read(directory.path(), DocumentFormat::PlainText);
    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.error().description, directory.path() + u": Is a directory"_s);
    const auto missing = read(directory.filePath(u"missing"_s), DocumentFormat::Pdf);
    EXPECT_EQ(missing.error().description, directory.filePath(u"missing"_s) + u": No such file or directory"_s);
    EXPECT_EQ(read(u"relative.txt"_s, DocumentFormat::PlainText).error().code, DocumentError::Code::Unreadable);
    const auto closed = put(u"closed.txt"_s, "text");
    QFile::setPermissions(closed, {});
    const auto text = read(closed, DocumentFormat::PlainText);
    EXPECT_TRUE(text || text.error().description == closed + u": Permission denied"_s)
        << "an administrator may read it";
}

TEST_F(DocumentFiles, AProcessThatMisbehavesIsEndedAndItsDocumentUnsupported) {
    const auto run = [&](const QString& path) {
        DocumentProcessReader other(loop, path, 1s);
        return testing::runTaskOnQt(loop, other.importHtml(QByteArray(5'000'000, 'x')));
    };
    const auto pidFile = directory.filePath(u"pid"_s).toUtf8();
    expectUnsupported(run(program("echo $$ > " + pidFile + "; exec sleep 1000")));
    QFile written(directory.filePath(u"pid"_s));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_NE(::kill(written.readAll().trimmed().toInt(), 0), 0) << "the process lives on";
    expectUnsupported(run(program("kill -SEGV $$")));
    expectUnsupported(run(program("exec yes")));
    expectUnsupported(run(program("exit 77")));
    expectUnsupported(run(directory.filePath(u"missing program"_s)));
}

TEST_F(DocumentFiles, TheProcessLearnsNothingOfTheUsersEnvironment) {
    qputenv("TAVRELON_TEST_SECRET", "a key");
    DocumentProcessReader other(loop, program("exec /usr/bin/env"));
    const auto environment = testing::runTaskOnQt(loop, other.importHtml({}));
    qunsetenv("TAVRELON_TEST_SECRET");
    ASSERT_TRUE(environment && environment->contains(u"LC_ALL="_s)) << environment.value_or(QString()).toStdString();
    for (const auto& name : {u"TAVRELON_TEST_SECRET"_s, u"HOME="_s, u"DBUS_SESSION_BUS_ADDRESS"_s})
        EXPECT_FALSE(environment->contains(name)) << environment->toStdString();
}

}  // namespace tavrelon::desktop
