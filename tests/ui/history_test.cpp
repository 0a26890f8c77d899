#include <gtest/gtest.h>

#include <QImage>

#include "support/qt_gtest.h"
#include "text/pieces.h"
#include "ui/history_desk.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
using persistence::HistoryEntry;
using Kind = HistoryPieceRow::Kind;

class HistoryTest : public ::testing::Test, public tavrelon::testing::HistoryDesk {
 public:
    int age = 0;

    /// Adds an entry that is a minute younger than the one before.
    void add(HistoryEntry entry) {
        entry.id = QUuid::createUuid();
        entry.timestamp = std::chrono::sys_days(std::chrono::year(2026) / 3 / 9) + std::chrono::minutes(++age);
        history.addEntry(std::move(entry));
    }
    QStringList shown(const QAbstractItemModel& list, const QByteArray& role) const {
        QStringList values;
        for (int row = 0; row < list.rowCount(); ++row)
            values << list.data(list.index(row, 0), list.roleNames().key(role)).toString();
        return values;
    }
    QStringList groups() { return shown(*page.groups(), "appId"); }
    QStringList messages() { return shown(*page.conversation(), "pieceText"); }
};

TEST_F(HistoryTest, GroupsByApplicationWithTheNewestFirst) {
    add({.appBundleID = u"org.a"_s, .appName = u"Mail"_s, .inputText = u"one"_s});
    add({.inputText = u"nobody's"_s});
    add({.appBundleID = u"org.b"_s, .appName = u"Mail"_s, .inputText = u"two"_s});
    add({.appBundleID = QString(), .appName = u"Notes"_s});
    add({.appBundleID = u"org.a"_s, .inputText = u"长"_s.repeated(50) + u"!"_s});
    EXPECT_EQ(groups(), (QStringList{u"org.a"_s, u"Notes"_s, u"org.b"_s, u"unknown"_s}));
    EXPECT_EQ(shown(*page.groups(), "displayName"), (QStringList{u"Mail"_s, u"Notes"_s, u"Mail"_s, u"unknown"_s}));
    EXPECT_EQ(shown(*page.groups(), "count")[0], u"2 entries"_s);
    EXPECT_EQ(shown(*page.groups(), "preview")[0], u"长"_s.repeated(50) + u"..."_s);

    EXPECT_FALSE(page.hasConversation());
    page.selectApp(u"org.a"_s);
    EXPECT_EQ(page.conversationName(), u"Mail"_s);
    EXPECT_EQ(messages(), (QStringList{{}, u"one"_s, {}, {}, u"长"_s.repeated(50) + u"!"_s, {}})) << "oldest first";
    add({.appBundleID = u"org.a"_s, .inputText = u"three"_s});
    EXPECT_EQ(page.conversation()->rowCount(), 9) << "a new entry shows at once";
}

TEST_F(HistoryTest, SearchesAllTextsAndHidesTheRest) {
    add({.sceneName = u"Translate"_s, .appName = u"Mail"_s, .inputText = u"STRASSE"_s});
    add({.appName = u"Mail"_s, .windowTitle = u"Café — bill"_s, .outputText = u"مرحبا بالعالم"_s});
    add({.intent = u"image"_s, .appName = u"Notes"_s});
    page.selectApp(u"Mail"_s);
    const auto found = [&](const QString& text) {
        page.setSearchText(text);
        return groups();
    };
    EXPECT_EQ(found(u"CAFE\u0301"_s), QStringList{u"Mail"_s}) << "composed or not is the same letter";
    EXPECT_EQ(page.conversationCount(), u"1 entry"_s);
    storage.changeSettings([](auto& settings) { settings.appLanguage = u"zh"_s; });
    desktop.loop.runUntilIdle();
    EXPECT_EQ(page.conversationCount(), u"1 条记录"_s) << "in the language of the interface";
    EXPECT_EQ(found(u"strasse"_s), QStringList{u"Mail"_s});
    EXPECT_EQ(found(u"translate"_s), QStringList{u"Mail"_s});
    EXPECT_EQ(found(u"بالعالم"_s), QStringList{u"Mail"_s});
    EXPECT_EQ(found(u"note"_s), QStringList{u"Notes"_s});
    EXPECT_FALSE(page.hasConversation()) << "the search hid the chosen one";
    EXPECT_TRUE(found(u"nowhere"_s).isEmpty());
    EXPECT_TRUE(page.isEmpty());
    found({});
    EXPECT_TRUE(page.hasConversation());
    page.setFilterIntent(u"image"_s);
    EXPECT_EQ(groups(), QStringList{u"Notes"_s});

    HistoryModel turkish(storage, history, {}, QLocale(u"tr_TR"_s));
    add({.appName = u"Işık"_s});
    turkish.setSearchText(u"ışık"_s);
    EXPECT_EQ(turkish.groups()->rowCount(), 1);
}

TEST_F(HistoryTest, APictureStandsForItsNoticeUnlessItCannotBeRead) {
    const auto save = [&](const QString& name, const QByteArray& bytes) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    const auto good = folder.filePath(pictureName(1));
    EXPECT_TRUE(QImage(40, 30, QImage::Format_RGB32).save(good, "PNG"));
    EXPECT_TRUE(QImage(40, 30, QImage::Format_RGB32).save(folder.filePath(u"mine.jpg"_s), "PNG"));
    save(pictureName(2), "<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>");  // Qt would draw it
    const auto copied = u" 图片已复制到剪贴板\n"_s;
    for (const auto& path : {pictureName(1), good, u"mine.jpg"_s, pictureName(2), pictureName(3)})
        add({.inputText = u"draw"_s, .outputText = copied, .outputImagePath = path});
    add({.inputText = u"draw"_s, .outputText = u"a cat"_s, .outputImagePath = pictureName(1)});
    page.selectApp(u"unknown"_s);
    const auto sources = shown(*page.conversation(), "imageSource");
    EXPECT_EQ(sources.size(), 19);
    EXPECT_EQ(sources.count(QString()), 17) << "a picture that is not ours is no more read than one that is broken";
    EXPECT_EQ(sources[2], QUrl::fromLocalFile(good).toString());
    EXPECT_EQ(sources[18], sources[2]);
    EXPECT_EQ(messages()[2], copied) << "for the view, if the rest of the file is broken";
    EXPECT_EQ(messages()[8], copied);
    EXPECT_EQ(messages()[17], u"a cat"_s);
    EXPECT_EQ(shown(*page.conversation(), "isFirst")[18], u"false"_s) << "one bubble with the text above it";
}

TEST_F(HistoryTest, ALongTextIsDrawnInPiecesAndNoneOfItIsLost) {
    const auto lines = u"A line of the report.\n"_s.repeated(50'000);  // over 1 MB
    const auto faces = u"👩‍👩‍👧‍👦"_s.repeated(1000);
    for (const auto& text :
         {lines, u"word "_s.repeated(5000), u"שלום"_s.repeated(5000), faces, QString(), u"short"_s}) {
        const auto pieces = text::piecesOf(text);
        QString joined;
        for (const auto& piece : pieces) {
            EXPECT_LE(piece.size(), text::longestPiece);
            joined += piece;
        }
        EXPECT_EQ(joined.remove(u'\n'), QString(text).remove(u'\n'));
    }
    for (const auto& piece : text::piecesOf(faces))
        EXPECT_EQ(piece.size() % 11, 0) << "cut between characters";

    add({.inputText = lines, .outputText = lines});
    page.selectApp(u"unknown"_s);
    page.setSearchText(u"REPORT"_s);
    EXPECT_GT(page.conversation()->rowCount(), 500);
    EXPECT_EQ(shown(*page.conversation(), "isLast").count(u"true"_s), 3) << "the head and two bubbles";
}

}  // namespace tavrelon::ui
