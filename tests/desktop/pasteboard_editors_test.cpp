#include <QTemporaryDir>

#include "capture/clipboard_selection.h"
#include "desktop/pasteboard_session.h"
#include "desktop/tools.h"
#include "desktop/x11/x11_key_poster.h"
#include "desktop/x11/x11_workspace.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;

const QString mixedText = QStringLiteral("Grüße 你好 👋");

/// A real editor in front, driven through its keys.
class PasteboardEditors : public PasteboardSession, public ::testing::WithParamInterface<const char*> {
 public:
    QTemporaryDir folder;
    std::optional<RunningProgram> editor;
    std::unique_ptr<desktop::X11Workspace> workspace = desktop::X11Workspace::create().value();

    void SetUp() override {
        const auto path = folder.filePath(QStringLiteral("text.txt"));
        writeWhole(path, "typed before");
        editor.emplace(QString::fromLatin1(GetParam()), QStringList{path});
        ASSERT_TRUE(runQtUntil([&] {
            const auto front = workspace->frontmostApplication();
            return front && front->processIdentifier == editor->process();
        }));
    }
    static void press(const QString& keys) { pressKeys({keys}); }

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

TEST_P(PasteboardEditors, TheClipboardSurvivesALookAtTheSelectionBesideAManager) {
    const RunningProgram manager(QStringLiteral("copyq"), {});  // takes part in every change
    const auto isUp = [] { return run(QStringLiteral("copyq"), {QStringLiteral("count")}).exitCode == 0; };
    ASSERT_TRUE(runQtUntil(isUp));
    ASSERT_TRUE(copiesAll(QStringLiteral("typed before")));
    const auto html = QStringLiteral("text/html");
    const auto custom = QStringLiteral("application/x-of-its-own");
    const auto utf8 = QStringLiteral("UTF8_STRING");
    const ClipboardOwner owner({data(html, "<b>kept</b>"), data(custom, pattern(300'000)), data(utf8, "kept")});
    runQtUntil([] { return false; }, 1s);  // in which the manager looks at it, too

    const auto poster = desktop::X11KeyPoster::open(loop, std::make_shared<desktop::PostedKeys>()).value();
    capture::ClipboardSelection selection(loop, log, *pasteboard, *poster);
    EXPECT_EQ(runTaskOnQt(loop, selection.read(capture::SelectAll::Allowed)), QStringLiteral("typed before"));
    runQtUntil([] { return false; }, 1s);
    EXPECT_EQ(readByXclip(html), "<b>kept</b>");
    EXPECT_EQ(readByXclip(custom), pattern(300'000));
    EXPECT_EQ(string(), QStringLiteral("kept"));

    run(QStringLiteral("copyq"), {QStringLiteral("exit")});
}

INSTANTIATE_TEST_SUITE_P(Real, PasteboardEditors, ::testing::Values("mousepad", "featherpad"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace

}  // namespace tavrelon::testing
