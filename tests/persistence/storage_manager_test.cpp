#include "persistence/storage_manager.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/failing_file_system.h"
#include "support/memory_defaults_store.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::persistence {

namespace {

const QString support = QStringLiteral("/home/u/.local/share/Tavrelon");
const QString scenesPath = support + QStringLiteral("/scenes.json");

}  // namespace

class StorageManagerTest : public ::testing::Test {
 public:
    std::unique_ptr<StorageManager> start() {
        return std::make_unique<StorageManager>(store, files, log, loop, support);
    }

    QStringList sceneNames() {
        QStringList names;
        for (const auto& scene : start()->scenes())
            names << scene.name;
        return names;
    }

    testing::MemoryDefaultsStore store;
    testing::FailingFileSystem files;
    testing::RecordingLog log;
    testing::VirtualMainLoop loop;
};

TEST_F(StorageManagerTest, WhatIsSavedComesBackAtTheNextStart) {
    auto storage = start();
    EXPECT_TRUE(files.exists(support));
    EXPECT_EQ(storage->settings(), defaultSettings());
    storage->changeSettings([](AppSettings& settings) {
        settings.appLanguage = QStringLiteral("zh");
        settings.screenshotMode = QStringLiteral("window");
    });
    EXPECT_EQ(start()->settings(), defaultSettings());  // a change alone is not stored
    storage->saveSettings();
    EXPECT_EQ(store.writeCount, 1);
    EXPECT_EQ(start()->settings(), storage->settings());
    EXPECT_EQ(start()->settings().screenshotMode, QStringLiteral("window"));
}

TEST_F(StorageManagerTest, AFaultyDocumentMeansDefaultsAndStaysUntilTheNextSave) {
    for (const QByteArray bad : {"[1]", "{", "", "\xff", "null"}) {
        store.setData(defaults_keys::settings, bad);
        const auto storage = start();
        EXPECT_EQ(storage->settings(), defaultSettings()) << bad.toStdString();
        EXPECT_EQ(store.data(defaults_keys::settings), bad);
        storage->saveSettings();
        EXPECT_EQ(store.data(defaults_keys::settings), text::compactJson(toJson(defaultSettings())));
        EXPECT_EQ(store.data(QStringLiteral("tavrelon.settings.broken")), bad) << "for a person to mend";
        EXPECT_EQ(storage->faultySettings(), QStringList{defaults_keys::settings});
    }
    EXPECT_EQ(log.lines().size(), 5);
}

TEST_F(StorageManagerTest, AFaultyValueIsToldAndKeptBesideTheNextDocument) {
    const QByteArray bad = R"({"appLanguage":"zh","maxHistoryEntries":"20"})";
    store.setData(defaults_keys::settings, bad);
    const auto storage = start();
    EXPECT_EQ(storage->settings().appLanguage, QStringLiteral("zh"));
    EXPECT_EQ(storage->settings().maxHistoryEntries, 20);
    EXPECT_EQ(storage->faultySettings(), QStringList{QStringLiteral("maxHistoryEntries")});
    EXPECT_EQ(log.lines().size(), 1);
    EXPECT_EQ(store.data(QStringLiteral("tavrelon.settings.broken")), bad);
}

TEST_F(StorageManagerTest, AFailedSaveLeavesTheStoredDocument) {
    const auto storage = start();
    storage->saveSettings();
    const auto stored = store.data(defaults_keys::settings);
    storage->changeSettings([](AppSettings& s) { s.autoResetDelay = std::numeric_limits<double>::quiet_NaN(); });
    storage->saveSettings();
    EXPECT_EQ(store.data(defaults_keys::settings), stored);
    EXPECT_EQ(store.writeCount, 1);
    store.refuseWrites = true;
    storage->changeSettings([](AppSettings& s) { s = defaultSettings(); });
    storage->saveSettings();
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(StorageManagerTest, SubscribersHearOfEachChangeWhileTheyAreSubscribed) {
    auto storage = start();
    QStringList heard;
    auto subscription = storage->onChange([&] { heard << storage->settings().appLanguage; });
    const auto setLanguage = [&](const char* language) {
        storage->changeSettings([&](AppSettings& s) { s.appLanguage = QString::fromLatin1(language); });
    };
    setLanguage("zh");
    EXPECT_EQ(heard, QStringList{QStringLiteral("zh")});
    storage->notifySettingsChanged();
    EXPECT_EQ(heard.size(), 1);  // in a later turn only
    loop.runUntilIdle();
    EXPECT_EQ(heard.size(), 2);

    // A subscriber may change the settings itself, and end its subscription.
    const auto nested = storage->onChange([&] {
        if (storage->settings().appLanguage == QStringLiteral("en"))
            setLanguage("fr");
    });
    setLanguage("en");
    EXPECT_EQ(storage->settings().appLanguage, QStringLiteral("fr"));
    EXPECT_EQ(heard.last(), QStringLiteral("fr"));
    const auto before = heard.size();
    subscription = {};
    setLanguage("de");
    EXPECT_EQ(heard.size(), before);

    storage->notifySettingsChanged();
    storage.reset();
    loop.runUntilIdle();  // the scheduled notice must not touch the object that is gone
    EXPECT_EQ(heard.size(), before);
}

TEST_F(StorageManagerTest, AUsersSceneFileReplacesTheBuiltInScenes) {
    EXPECT_EQ(sceneNames().size(), 5);
    files.put(scenesPath, text::compactJson(scenes::toJson(std::vector{scenes::defaultScenes().at(2)})));
    EXPECT_EQ(sceneNames(), QStringList{QStringLiteral("浏览器")});
    files.put(scenesPath, "[]");
    EXPECT_EQ(sceneNames(), QStringList());
    EXPECT_EQ(log.lines(), QStringList());

    auto reversed = scenes::toJson(scenes::defaultScenes());
    reversed[0]["outputContract"]["lengthMin"] = 501;
    files.put(scenesPath, text::compactJson(reversed));
    EXPECT_EQ(sceneNames().size(), 5);
    EXPECT_EQ(log.lines(),
              QStringList{QStringLiteral("Failed to load scenes: scene 1 (Slack 消息): \"outputContract\": "
                                         "\"lengthMax\" (500) is smaller than \"lengthMin\" (501).")});
    log.clear();
    files.refuse(scenesPath);
    EXPECT_EQ(sceneNames().size(), 5);
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("Failed to load scenes: %1: refused").arg(scenesPath)});
    EXPECT_EQ(files.content(scenesPath), text::compactJson(reversed));
}

}  // namespace tavrelon::persistence
