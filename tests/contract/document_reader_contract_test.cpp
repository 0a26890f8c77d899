#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "desktop/documents/document_process_reader.h"
#include "desktop/qt/qt_main_loop.h"
#include "support/fake_document_reader.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"

namespace tavrelon {

using namespace Qt::StringLiterals;
using platform::DocumentError;
using platform::DocumentFormat;
using platform::DocumentReader;

namespace {

enum class Kind { Fake, Process };

class DocumentReaderContract : public ::testing::TestWithParam<Kind> {
 public:
    desktop::QtMainLoop loop;
    QTemporaryDir directory;
    testing::FakeDocumentReader fake{loop};
    desktop::DocumentProcessReader process{loop, QStringLiteral(DOCUMENT_READER)};

    DocumentReader& reader() {
        if (GetParam() == Kind::Fake)
            return fake;
        return process;
    }
    QString path(const QString& name) const { return directory.filePath(name); }
    QString put(const QString& name, const QString& text) {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0);
        fake.put(path(name), text);
        return path(name);
    }
    DocumentReader::Text read(const QString& file, DocumentFormat format) {
        return testing::runTaskOnQt(loop, reader().readFile(file, format));
    }
};

}  // namespace

TEST_P(DocumentReaderContract, AFileGivesItsTextUpToTheCap) {
    EXPECT_EQ(read(put(u"a\nname é.txt"_s, u"Grüße 你好 👋\n\nzwei"_s), DocumentFormat::PlainText),
              u"Grüße 你好 👋\n\nzwei"_s);
    EXPECT_EQ(read(put(u"empty.txt"_s, {}), DocumentFormat::PlainText), QString());
    const auto cut = read(put(u"long.txt"_s, QString(DocumentReader::textCap + 5, u'字')), DocumentFormat::PlainText);
    EXPECT_EQ(cut, QString(DocumentReader::textCap, u'字'));
}

TEST_P(DocumentReaderContract, AMissingFileIsUnreadableForANamedReason) {
    for (const auto format :
         {DocumentFormat::PlainText, DocumentFormat::Pdf, DocumentFormat::Rtf, DocumentFormat::Html}) {
        const auto missing = read(path(u"missing"_s), format);
        ASSERT_FALSE(missing);
        EXPECT_EQ(missing.error().code, DocumentError::Code::Unreadable);
        EXPECT_TRUE(missing.error().description.startsWith(path(u"missing"_s) + u": "_s))
            << missing.error().description.toStdString();
    }
}

TEST_P(DocumentReaderContract, WhatIsNoDocumentOfItsFormatIsUnsupported) {
    const auto file = put(u"letter.pdf"_s, u"not a PDF"_s);
    fake.putUnsupported(file);
    const auto text = read(file, DocumentFormat::Pdf);
    ASSERT_FALSE(text);
    EXPECT_EQ(text.error().code, DocumentError::Code::Unsupported);
    EXPECT_FALSE(text.error().description.isEmpty());
}

TEST_P(DocumentReaderContract, MarkupGivesWhatStandsBetweenTheTags) {
    const auto text = testing::runTaskOnQt(loop, reader().importHtml("<p>Gr\xc3\xbc\xc3\x9f"
                                                                     "e <b>an</b> alle</p>"));
    EXPECT_EQ(text, u"Grüße an alle"_s);
}

TEST_P(DocumentReaderContract, ADroppedReadingEnds) {
    const auto file = put(u"a.txt"_s, u"text"_s);
    bool answered = false;
    {
        async::TaskScope scope(loop);
        scope.spawn([](DocumentReader& reader, QString name, bool& done) -> async::Task<void> {
            static_cast<void>(co_await reader.readFile(std::move(name), DocumentFormat::PlainText));
            done = true;
        }(reader(), file, answered));
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(read(file, DocumentFormat::PlainText), u"text"_s);
    EXPECT_FALSE(answered);
}

INSTANTIATE_TEST_SUITE_P(OnTheFakeAndOnAProcess, DocumentReaderContract, ::testing::Values(Kind::Fake, Kind::Process));

}  // namespace tavrelon
