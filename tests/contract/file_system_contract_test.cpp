#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "desktop/linux/posix_file_system.h"
#include "support/memory_file_system.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

namespace {

/// A file system and a folder in it that is there and empty.
struct Subject {
    virtual ~Subject() = default;
    virtual platform::FileSystem& files() = 0;
    virtual QString folder() = 0;
};

struct Fake : Subject {
    Fake() { static_cast<void>(memory.createDirectory(folder())); }
    platform::FileSystem& files() override { return memory; }
    QString folder() override { return QStringLiteral("/base"); }
    MemoryFileSystem memory;
};

struct Real : Subject {
    platform::FileSystem& files() override { return posix; }
    QString folder() override { return directory.path(); }
    QTemporaryDir directory;
    desktop::PosixFileSystem posix;
};

template <typename Kind>
std::unique_ptr<Subject> make() {
    return std::make_unique<Kind>();
}

}  // namespace

class FileSystemContract : public ::testing::TestWithParam<std::unique_ptr<Subject> (*)()> {
 public:
    QString at(const char* name) { return subject->folder() + u'/' + QString::fromUtf8(name); }

    /// The content, or the text "error" when there is none to be had.
    QByteArray contentOf(const QString& path) { return files.read(path).value_or("error"); }

    std::unique_ptr<Subject> subject = GetParam()();
    platform::FileSystem& files = subject->files();
};

INSTANTIATE_TEST_SUITE_P(FakeAndReal, FileSystemContract, ::testing::Values(&make<Fake>, &make<Real>),
                         [](const auto& each) { return each.index == 0 ? "Fake" : "Real"; });

TEST_P(FileSystemContract, AWriteReplacesTheWholeFile) {
    const auto path = at("文档 1.json");
    EXPECT_FALSE(files.exists(path));
    for (const auto& content : {QByteArray(100'000, 'a'), QByteArray("short\0\n", 7), QByteArray(), QByteArray("x")}) {
        ASSERT_TRUE(files.write(path, content));
        EXPECT_EQ(contentOf(path), content);
    }
    EXPECT_TRUE(files.exists(path));
    ASSERT_TRUE(files.remove(path));
    EXPECT_FALSE(files.exists(path));
}

TEST_P(FileSystemContract, FoldersAreMadeWithThoseAbove) {
    ASSERT_TRUE(files.createDirectory(at("a/b/c")));
    ASSERT_TRUE(files.createDirectory(at("a/b/c/")));
    ASSERT_TRUE(files.createDirectory(QStringLiteral("/")));
    EXPECT_TRUE(files.exists(at("a/b")));
    ASSERT_TRUE(files.write(at("a/b/c/f"), "x"));
    EXPECT_EQ(contentOf(at("a/b/c/f")), "x");
    EXPECT_FALSE(files.createDirectory(at("a/b/c/f")));
    EXPECT_FALSE(files.createDirectory(at("a/b/c/f/g")));
    EXPECT_EQ(contentOf(at("a/b/c/f")), "x");
}

TEST_P(FileSystemContract, FailuresNameThePathAndChangeNothing) {
    ASSERT_TRUE(files.createDirectory(at("folder")));
    const auto failsFor = [](const QString& path, const auto& result) {
        return !result && result.error().description.startsWith(path + QStringLiteral(": ")) &&
               result.error().description.size() > path.size() + 2;
    };
    EXPECT_TRUE(failsFor(at("none"), files.read(at("none"))));
    EXPECT_TRUE(failsFor(at("folder"), files.read(at("folder"))));
    EXPECT_TRUE(failsFor(at("none/f"), files.write(at("none/f"), "x")));
    EXPECT_TRUE(failsFor(at("folder"), files.write(at("folder"), "x")));
    EXPECT_TRUE(failsFor(at("none"), files.remove(at("none"))));
    EXPECT_TRUE(failsFor(at("folder"), files.remove(at("folder"))));
    EXPECT_FALSE(files.exists(at("none")));
    EXPECT_TRUE(files.exists(at("folder")));

    for (const auto& path : {QStringLiteral("relative"), QString(), at("f") + QChar(0) + QStringLiteral("g")}) {
        EXPECT_TRUE(failsFor(path, files.write(path, "x")));
        EXPECT_TRUE(failsFor(path, files.read(path)));
        EXPECT_TRUE(failsFor(path, files.createDirectory(path)));
        EXPECT_TRUE(failsFor(path, files.remove(path)));
        EXPECT_FALSE(files.exists(path));
    }
    EXPECT_FALSE(files.exists(at("f")));
}

}  // namespace tavrelon::testing
