#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "desktop/linux/directory_defaults_store.h"
#include "desktop/linux/posix_file_system.h"
#include "support/memory_defaults_store.h"
#include "support/memory_file_system.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"

namespace tavrelon::testing {

namespace {

struct Subject {
    virtual ~Subject() = default;
    virtual platform::DefaultsStore& store() = 0;
};

struct Fake : Subject {
    platform::DefaultsStore& store() override { return memory; }
    MemoryDefaultsStore memory;
};

struct Real : Subject {
    platform::DefaultsStore& store() override { return entries; }
    QTemporaryDir directory;
    desktop::PosixFileSystem files;
    RecordingLog log;
    desktop::DirectoryDefaultsStore entries{files, log, directory.path() + QStringLiteral("/config/Tavrelon")};
};

template <typename Kind>
std::unique_ptr<Subject> make() {
    return std::make_unique<Kind>();
}

}  // namespace

class DefaultsStoreContract : public ::testing::TestWithParam<std::unique_ptr<Subject> (*)()> {
 public:
    std::unique_ptr<Subject> subject = GetParam()();
    platform::DefaultsStore& store = subject->store();
};

INSTANTIATE_TEST_SUITE_P(FakeAndReal, DefaultsStoreContract, ::testing::Values(&make<Fake>, &make<Real>),
                         [](const auto& each) { return each.index == 0 ? "Fake" : "Real"; });

TEST_P(DefaultsStoreContract, EntriesKeepTheirBytes) {
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

TEST_P(DefaultsStoreContract, NamesThatLeadElsewhereAreRefused) {
    for (const auto& name :
         {QStringLiteral("a/b"), QStringLiteral("../a"), QStringLiteral("/etc/a"), QStringLiteral(".."),
          QStringLiteral("."), QStringLiteral(".hidden"), QString(), QStringLiteral("a") + QChar(0)}) {
        EXPECT_FALSE(store.setData(name, "x"));
        EXPECT_EQ(store.data(name), std::nullopt);
    }
}

TEST(DirectoryDefaultsStore, AnEntryIsAFileOfItsName) {
    MemoryFileSystem files;
    RecordingLog log;
    desktop::DirectoryDefaultsStore store(files, log, QStringLiteral("/c"));
    ASSERT_TRUE(store.setData(QStringLiteral("tavrelon.settings"), "{}"));
    EXPECT_EQ(files.files(), QStringList{QStringLiteral("/c/tavrelon.settings")});
    files.put(QStringLiteral("/c/tavrelon.settings"), "edited by hand");
    EXPECT_EQ(store.data(QStringLiteral("tavrelon.settings")), "edited by hand");
    files.refuse(QStringLiteral("/c/tavrelon.settings"));
    EXPECT_FALSE(store.setData(QStringLiteral("tavrelon.settings"), "new"));
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("[Settings] Not stored: /c/tavrelon.settings: refused")});
    files.allowAll();
    EXPECT_EQ(store.data(QStringLiteral("tavrelon.settings")), "edited by hand");
}

}  // namespace tavrelon::testing
