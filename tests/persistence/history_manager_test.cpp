#include "persistence/history_manager.h"

#include <gtest/gtest.h>

#include "support/failing_file_system.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"

namespace tavrelon::persistence {

namespace {

const QString folder = QStringLiteral("/data/Tavrelon");
const QString file = folder + QStringLiteral("/history.json");

HistoryEntry entry(const QString& input) {
    return {.id = QUuid::createUuid(),
            .timestamp = text::dateFromReferenceSeconds(0),
            .inputText = input,
            .outputText = QStringLiteral("out")};
}

}  // namespace

class HistoryManagerTest : public ::testing::Test {
 public:
    HistoryManager start() { return HistoryManager(files, log, folder, 20); }

    QStringList inputs(const HistoryManager& history) {
        QStringList found;
        for (const auto& each : history.entries())
            found << each.inputText;
        return found;
    }

    testing::FailingFileSystem files;
    testing::RecordingLog log;
};

TEST_F(HistoryManagerTest, EntriesComeBackNewestFirst) {
    auto history = start();
    int changes = 0;
    const auto subscription = history.onChange([&] { ++changes; });
    history.addEntry(entry(QStringLiteral("first")));
    auto second = entry(QStringLiteral("second"));
    second.sceneID = second.sceneName = second.intent = second.appBundleID = QStringLiteral("s");
    second.appName = second.windowTitle = second.outputImagePath = second.editedText = QStringLiteral("t");
    second.wasEdited = true;
    second.retryCount = 2;
    history.addEntry(second);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(inputs(start()).join(u' '), QStringLiteral("second first"));
    EXPECT_EQ(start().entries(), history.entries());
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(HistoryManagerTest, KeepsTheStoredForm) {
    const QByteArray stored =
        R"([{"id":"0A1B2C3D-0000-4000-8000-00000000ABCD","timestamp":0.0,"inputText":"a","outputText":"b",)"
        R"("wasReverted":false,"wasEdited":false,"retryCount":0}])";
    const auto entries = historyEntriesFrom(text::parseJson(stored));
    EXPECT_EQ(entries.at(0).timestamp, std::chrono::sys_days(std::chrono::year(2001) / 1 / 1));
    EXPECT_EQ(text::compactJson(toJson(entries)), stored);
    for (const char* key : {"id", "timestamp", "inputText", "outputText", "wasReverted", "wasEdited", "retryCount"}) {
        auto lacking = text::parseJson(stored);
        lacking[0].erase(key);
        EXPECT_THROW(historyEntriesFrom(lacking), text::JsonError) << key;
    }
}

TEST_F(HistoryManagerTest, WhatExceedsTheCapGoesWithItsImage) {
    auto history = start();
    auto withImage = entry(QStringLiteral("0"));
    withImage.outputImagePath = history.saveImage("jpeg", withImage.id);
    EXPECT_EQ(withImage.outputImagePath,
              QStringLiteral("history-images/") + text::uuidText(withImage.id) + QStringLiteral(".jpg"));
    const auto imagePath = *history.resolvedImagePath(*withImage.outputImagePath);
    history.addEntry(withImage);
    for (int i = 1; i < 20; ++i)
        history.addEntry(entry(QString::number(i)));
    EXPECT_EQ(files.content(imagePath), "jpeg");
    history.addEntry(entry(QStringLiteral("20")));
    EXPECT_EQ(history.entries().size(), 20U);
    EXPECT_EQ(history.entries().back().inputText, QStringLiteral("1"));
    EXPECT_FALSE(files.exists(imagePath));
}

TEST_F(HistoryManagerTest, ALongFileIsCutAtTheNextEntryAndOnlyOurPicturesGoWithIt) {
    const auto name = QStringLiteral("11111111-1111-1111-1111-111111111111.jpg");
    const auto images = QStringLiteral("history-images/");
    const QStringList foreign{QStringLiteral("/pictures/cat.jpg"),
                              folder + u'/' + images + name,
                              images + QStringLiteral("../../") + name,
                              images + QStringLiteral("x/") + name,
                              QStringLiteral("./") + images + name,
                              images + QStringLiteral("cat.jpg"),
                              images + QStringLiteral("aaaaaaaa") + name.sliced(8),
                              name,
                              QStringLiteral("history.json"),
                              QString()};
    std::vector<HistoryEntry> entries;
    for (int i = 0; i < 30; ++i) {
        entries.push_back(entry(QString::number(i)));
        const auto& id = entries.back().id;
        entries.back().outputImagePath =
            i < 20 ? images + text::uuidText(id) + QStringLiteral(".jpg") : foreign.at(i - 20);
        if (const auto& path = *entries.back().outputImagePath; !path.isEmpty() && !path.startsWith(u'/'))
            files.put(folder + u'/' + path, "x");
    }
    files.put(foreign[0], "cat");
    files.put(foreign[1], "x");
    files.put(QStringLiteral("/data/") + name, "x");
    files.put(file, text::compactJson(toJson(entries)));

    auto history = start();
    const auto before = files.files().size();
    EXPECT_EQ(history.entries().size(), 30U);
    history.addEntry(entry(QStringLiteral("new")));
    EXPECT_EQ(inputs(history).first(), QStringLiteral("new"));
    EXPECT_EQ(inputs(history).last(), QStringLiteral("18"));
    EXPECT_FALSE(files.exists(folder + u'/' + *entries[19].outputImagePath));
    EXPECT_TRUE(files.exists(folder + u'/' + *entries[18].outputImagePath));
    EXPECT_EQ(files.files().size(), before - 1) << files.files().join(u'\n').toStdString();
}

TEST_F(HistoryManagerTest, WithoutRoomOnTheDiskAClearedHistoryIsGoneAndPicturesStayWithTheirEntries) {
    files.put(file + QStringLiteral(".broken"), "[{}]");
    auto history = start();
    auto oldest = entry(QStringLiteral("0"));
    oldest.outputImagePath = history.saveImage("jpeg", oldest.id);
    const auto image = *history.resolvedImagePath(*oldest.outputImagePath);
    history.addEntry(oldest);
    for (int i = 1; i < 20; ++i)
        history.addEntry(entry(QString::number(i)));
    files.isFull = true;
    history.addEntry(entry(QStringLiteral("20")));
    EXPECT_EQ(files.content(image), "jpeg") << "the file still names it";
    history.clearHistory();
    EXPECT_TRUE(start().entries().empty());
    EXPECT_EQ(files.files(), QStringList());
}

TEST_F(HistoryManagerTest, AClearingIsOffTheDiskAtOnceAndComesBackBehindWhatIsNewer) {
    files.put(file, "[{}]");
    auto history = start();
    auto pictured = entry(QStringLiteral("pictured"));
    pictured.outputImagePath = history.saveImage("jpeg", pictured.id);
    history.addEntry(pictured);
    history.addEntry(entry(QStringLiteral("plain")));
    const auto before = files.files();
    const auto cleared = history.clearHistory();
    EXPECT_EQ(files.files(), QStringList(file));
    EXPECT_EQ(files.content(file), "[]");
    EXPECT_TRUE(history.clearHistory().isEmpty());
    history.addEntry(entry(QStringLiteral("newer")));
    history.restore(cleared);
    EXPECT_EQ(inputs(start()).join(u' '), QStringLiteral("newer plain pictured"));
    EXPECT_EQ(files.files(), before) << "the picture, and the history that could not be read";
    EXPECT_EQ(files.content(*history.resolvedImagePath(*pictured.outputImagePath)), "jpeg");

    const auto again = history.clearHistory();
    for (int i = 0; i < 18; ++i)
        history.addEntry(entry(QString::number(i)));
    history.restore(again);
    EXPECT_EQ(history.entries().size(), 20U);
    EXPECT_FALSE(files.exists(*history.resolvedImagePath(*pictured.outputImagePath))) << "beyond the cap";
}

TEST_F(HistoryManagerTest, FailuresAreLoggedAndLoseNothingInMemory) {
    files.put(file, "[{}]");
    auto history = start();
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("Failed to load history: No value found for the key \"id\".")});
    EXPECT_EQ(files.content(file), "[{}]");
    EXPECT_EQ(files.content(file + QStringLiteral(".broken")), "[{}]") << "the next save replaces the other";
    log.clear();

    files.refuseAll();
    history.addEntry(entry(QStringLiteral("kept")));
    EXPECT_EQ(history.saveImage("jpeg", QUuid()), std::nullopt);
    const auto image = folder + QStringLiteral("/history-images/00000000-0000-0000-0000-000000000000.jpg");
    EXPECT_EQ(log.lines(), (QStringList{QStringLiteral("Failed to save history: %1: refused").arg(file),
                                        QStringLiteral("Failed to save history image: %1: refused").arg(image)}));
    files.allowAll();
    history.addEntry(entry(QStringLiteral("next")));
    EXPECT_EQ(inputs(start()).join(u' '), QStringLiteral("next kept"));

    files.refuse(file);
    log.clear();
    EXPECT_TRUE(start().entries().empty());
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("Failed to load history: %1: refused").arg(file)});
}

TEST_F(HistoryManagerTest, AFileThatIsCutAnywhereOrTooLargeIsAnEmptyHistory) {
    auto history = start();
    history.addEntry(entry(QStringLiteral("你好")));
    const auto whole = files.content(file);
    QList<QByteArray> faulty{"{}", "[[]]", "[" + QByteArray("{},").repeated(2'000'000) + "{}]",
                             QByteArray("[").repeated(5'000'000), QByteArray(100'000'000, ' ')};
    for (qsizetype length = 0; length < whole.size(); ++length)
        faulty << whole.first(length);
    for (const auto& document : faulty) {
        files.put(file, document);
        log.clear();
        EXPECT_TRUE(start().entries().empty());
        ASSERT_EQ(log.lines().size(), 1) << document.left(200).toStdString();
        EXPECT_TRUE(log.lines().front().startsWith(QStringLiteral("Failed to load history: ")));
    }
}

}  // namespace tavrelon::persistence
