#include <QProcess>
#include <QTemporaryDir>

#include "desktop/pasteboard_session.h"
#include "desktop/x11/x11_workspace.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;

const QString mixedText = QStringLiteral("Grüße 你好 👋");

/// A real editor in front, driven through its keys.
class PasteboardEditors : public PasteboardSession, public ::testing::WithParamInterface<const char*> {
 public:
    QTemporaryDir folder;
    QProcess editor;
    std::unique_ptr<desktop::X11Workspace> workspace = desktop::X11Workspace::create().value();

    void SetUp() override {
        const auto path = folder.filePath(QStringLiteral("text.txt"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("typed before");
        file.close();
        editor.setStandardErrorFile(QProcess::nullDevice());
        editor.start(QString::fromLatin1(GetParam()), {path});
        ASSERT_TRUE(runQtUntil([&] {
            const auto front = workspace->frontmostApplication();
            return front && front->processIdentifier == editor.processId();
        }));
    }
    void TearDown() override {
        editor.terminate();  // a crash would bring up a dialog at the next start
        if (!editor.waitForFinished(2000)) {
            editor.kill();
            editor.waitForFinished();
        }
    }
    static void press(const QString& keys) { run(QStringLiteral("xdotool"), {QStringLiteral("key"), keys}); }

    /// Presses select-all and copy until the editor has copied what is expected: it may still be drawing its window.
    bool copiesAll(const QString& expected) {
        return runQtUntil([&] {
            const auto before = pasteboard->changeCount();
            press(QStringLiteral("ctrl+a"));
            press(QStringLiteral("ctrl+c"));
            return runQtUntil([&] { return pasteboard->changeCount() != before; }, 500ms) && string() == expected;
        });
    }
};

TEST_P(PasteboardEditors, CopyAndPasteAndGiveBack) {
    ASSERT_TRUE(copiesAll(QStringLiteral("typed before")));
    const auto snapshot = items();
    ASSERT_TRUE(snapshot && !snapshot->empty());

    pasteboard->clearContents();
    pasteboard->setString(mixedText);
    press(QStringLiteral("ctrl+v"));
    EXPECT_TRUE(copiesAll(mixedText));

    pasteboard->clearContents();
    pasteboard->writeItems(*snapshot);
    press(QStringLiteral("ctrl+v"));
    EXPECT_TRUE(copiesAll(QStringLiteral("typed before")));

    // An empty pasteboard pastes nothing: the text, which is selected, stays.
    pasteboard->clearContents();
    pasteboard->changeCount();
    press(QStringLiteral("ctrl+v"));
    EXPECT_TRUE(copiesAll(QStringLiteral("typed before")));
}

INSTANTIATE_TEST_SUITE_P(Real, PasteboardEditors, ::testing::Values("mousepad", "featherpad"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace

}  // namespace tavrelon::testing
