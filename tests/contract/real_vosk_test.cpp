// The library itself, as its makers publish it, and what it makes of folders that are no models.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "desktop/audio/vosk_library.h"
#include "support/qt_gtest.h"

/// The library forgets what it had read of a model when it refuses it.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier): so it is looked for
    return "leak:libvosk.so\n";
}

namespace tavrelon::testing {

class RealVoskTest : public ::testing::Test {
 public:
    const QString file = QStringLiteral(REAL_VOSK);
    const QTemporaryDir folder;

    void SetUp() override {
        if (!QFile::exists(file))
            GTEST_SKIP() << REAL_VOSK << " could not be fetched; see tests/support/fetch-vosk";
    }
    void write(const QString& name, const QByteArray& content) {
        const auto path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile written(path);
        ASSERT_TRUE(written.open(QIODevice::WriteOnly) && written.write(content) == content.size());
    }
};

TEST_F(RealVoskTest, TheLibraryHasEveryFunctionAndRefusesWhatIsNoModel) {
    const auto library = desktop::VoskLibrary::load(file);
    ASSERT_TRUE(library) << qPrintable(library.error());
    const auto isRead = [&] { return (*library)->readModel(folder.path()) != nullptr; };
    EXPECT_EQ((*library)->readModel(folder.filePath(QStringLiteral("absent"))), nullptr);
    EXPECT_FALSE(isRead()) << "an empty folder";
    write(QStringLiteral("am/final.mdl"), QByteArray(1000, 'x'));
    EXPECT_FALSE(isRead()) << "no configuration";
    write(QStringLiteral("conf/mfcc.conf"), "--use-energy=false\n");
    write(QStringLiteral("conf/model.conf"), "--beam=10\n");
    EXPECT_FALSE(isRead()) << "no acoustic model";
    write(QStringLiteral("am/final.mdl"), QByteArray("\0B<TransitionModel> <Topology> ", 31));
    EXPECT_FALSE(isRead()) << "a cut one";
}

TEST_F(RealVoskTest, AnIncompleteLibraryIsAnErrorInWords) {
    QFile whole(file);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    write(QStringLiteral("libvosk.so"), whole.read(1 << 20));
    const auto library = desktop::VoskLibrary::load(folder.filePath(QStringLiteral("libvosk.so")));
    ASSERT_FALSE(library);
    EXPECT_TRUE(library.error().endsWith(QStringLiteral("libvosk.so: the file is not complete")))
        << qPrintable(library.error());
}

}  // namespace tavrelon::testing
