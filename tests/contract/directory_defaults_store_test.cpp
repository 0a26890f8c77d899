#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"

namespace tavrelon::testing {

class DirectoryDefaultsStoreTest : public ::testing::Test {
 public:
    QTemporaryDir directory;
    const QString folder = directory.path() + QStringLiteral("/config/Tavrelon");
    desktop::PosixFileSystem files;
    RecordingLog log;
    desktop::DirectoryDefaultsStore store{files, log, folder};
};

TEST_F(DirectoryDefaultsStoreTest, EntriesKeepTheirBytes) {
    const auto key = QStringLiteral("tavrelon.settings");
    EXPECT_EQ(store.data(key), std::nullopt);
    EXPECT_EQ(store.string(key), std::nullopt);
    for (const auto& value : {QByteArray("\xff\0\n", 3), QByteArray(), QByteArray(70'000, 'x')}) {
        ASSERT_TRUE(store.setData(key, value));
        EXPECT_EQ(store.data(key), value);
    }
    ASSERT_TRUE(store.setString(QStringLiteral("tavrelon.nvidiaApiKey"), QStringLiteral("  ключ \n")));
    EXPECT_EQ(store.string(QStringLiteral("tavrelon.nvidiaApiKey")), QStringLiteral("  ключ \n"));
    EXPECT_EQ(store.data(key)->size(), 70'000);
}

TEST_F(DirectoryDefaultsStoreTest, NamesThatLeadElsewhereAreRefused) {
    for (const auto& name :
         {QStringLiteral("a/b"), QStringLiteral("../a"), QStringLiteral("/etc/a"), QStringLiteral(".."),
          QStringLiteral("."), QStringLiteral(".hidden"), QString(), QStringLiteral("a") + QChar(0)}) {
        EXPECT_FALSE(store.setData(name, "x"));
        EXPECT_EQ(store.data(name), std::nullopt);
    }
}

TEST_F(DirectoryDefaultsStoreTest, AnEntryIsAFileOfItsNameAndAFailureIsTold) {
    const auto key = QStringLiteral("tavrelon.settings");
    const auto path = folder + u'/' + key;
    ASSERT_TRUE(store.setData(key, "{}"));
    EXPECT_EQ(files.read(path), "{}");
    ASSERT_TRUE(files.write(path, "edited by hand"));
    EXPECT_EQ(store.data(key), "edited by hand");
    EXPECT_EQ(log.lines(), QStringList());
    ASSERT_TRUE(files.remove(path));
    ASSERT_TRUE(files.createDirectory(path));  // what is no file can be neither read nor replaced
    EXPECT_FALSE(store.setData(key, "new"));
    EXPECT_EQ(store.data(key), std::nullopt);
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_TRUE(log.lines().first().startsWith(QStringLiteral("[Settings] Not stored: ") + path));
    EXPECT_TRUE(log.lines().last().startsWith(QStringLiteral("[Settings] Not read: ") + path));
}

}  // namespace tavrelon::testing
