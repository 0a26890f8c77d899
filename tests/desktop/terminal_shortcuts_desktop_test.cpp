#include <QTemporaryDir>

#include "capture/clipboard_selection.h"
#include "desktop/pasteboard_session.h"
#include "desktop/tools.h"
#include "desktop/x11/keys/x11_key_poster.h"
#include "desktop/x11/windows/x11_terminal_shortcuts.h"
#include "desktop/x11/windows/x11_workspace.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;
using desktop::TerminalShortcuts;
using desktop::terminalShortcutsOf;

TEST(TerminalTable, NamesTerminalsByEitherPartOfTheirClass) {
    const auto xterm = terminalShortcutsOf(QStringLiteral("XTerm"), QStringLiteral("xterm"));
    ASSERT_TRUE(xterm);
    EXPECT_EQ(xterm->paste, TerminalShortcuts::Paste::OfPrimary);
    const auto gnome = terminalShortcutsOf(QStringLiteral("Gnome-terminal"), QStringLiteral("gnome-terminal-server"));
    ASSERT_TRUE(gnome);
    EXPECT_EQ(*gnome, (TerminalShortcuts{TerminalShortcuts::Copy::ByChord, TerminalShortcuts::Paste::OfClipboard}));
    EXPECT_TRUE(terminalShortcutsOf(QStringLiteral("Own title"), QStringLiteral("urxvt")));
    const auto unheardOf = terminalShortcutsOf(QStringLiteral("NewTerm"), QString());
    ASSERT_TRUE(unheardOf);
    EXPECT_EQ(unheardOf->copy, TerminalShortcuts::Copy::Never) << "Control+C could end what runs in it";
    const auto emacs = terminalShortcutsOf(QStringLiteral("Emacs"), QStringLiteral("emacs"));
    EXPECT_TRUE(emacs && !emacs->isTerminal && emacs->pasteChord == (desktop::KeyChord{keys::keyY, keys::controlFlag}));
    EXPECT_EQ(desktop::windowKindOf(QStringLiteral("Gvim"), QStringLiteral("gvim")),
              platform::WindowKind::WithoutPaste);
    EXPECT_NE(terminalShortcutsOf(QStringLiteral("Code"), QString())->copyChord.key, keys::keyC) << "it has terminals";
    EXPECT_FALSE(terminalShortcutsOf(QStringLiteral("Mousepad"), QStringLiteral("mousepad")));
    EXPECT_FALSE(terminalShortcutsOf(QString(), QString()));
}

/// A real terminal in front, in which a program writes what is typed into a file.
class Terminals : public PasteboardSession, public ::testing::WithParamInterface<const char*> {
 public:
    QTemporaryDir folder;
    QString typedPath = folder.filePath(QStringLiteral("typed"));
    std::optional<RunningProgram> terminal;
    std::unique_ptr<desktop::X11Workspace> workspace = desktop::X11Workspace::create().value();
    std::unique_ptr<desktop::X11KeyPoster> poster =
        desktop::X11KeyPoster::open(loop, std::make_shared<desktop::PostedKeys>(),
                                    desktop::X11TerminalShortcuts::create(loop, log, *pasteboard).value())
            .value();

    void open(const QString& firstOutput) {
        const auto script = folder.filePath(QStringLiteral("program"));
        writeProgram(
            script, "printf '" + firstOutput.toUtf8() + "\\n'\nstty -icanon\nexec cat >'" + typedPath.toUtf8() + "'\n");
        QStringList arguments{QStringLiteral("-e"), script};
        if (isLx())
            arguments.push_front(QStringLiteral("--no-remote"));
        terminal.emplace(QString::fromLatin1(GetParam()), arguments);
        ASSERT_TRUE(runQtUntil([&] {
            const auto front = workspace->frontmostApplication();
            return front && front->processIdentifier == terminal->process() && QFile::exists(typedPath);
        }));
        EXPECT_EQ(workspace->frontmostWindow()->kind, platform::WindowKind::Terminal);
        // A terminal that has just opened reads its program's output, and takes keys, in its own time.
        runQtUntil([] { return false; }, 1s);
    }
    static bool isLx() { return std::string_view(GetParam()) == "lxterminal"; }

    QByteArray typed() const { return contentsOf(typedPath); }
    void paste(const QString& text) {
        pasteboard->clearContents();
        pasteboard->setString(text);
        poster->press(keys::keyV, keys::commandFlag);
    }
    /// Whether the program gets exactly this. It gets every character at once, no line has to be ended.
    bool gets(const QByteArray& text) {
        return runQtUntil([&] { return typed() == text; }, 10s);
    }
    std::optional<QString> selectionViaClipboard() {
        capture::ClipboardSelection selection(loop, log, *pasteboard, *poster);
        return runTaskOnQt(loop, selection.read(capture::SelectAll::Allowed, [] { return true; }));
    }
};

TEST_P(Terminals, WithoutASelectionNothingIsCopiedOrTyped) {
    open(QStringLiteral("oneword"));
    copyByXclip("kept", QStringLiteral("UTF8_STRING"));
    // What another application has selected is not this terminal's.
    run(QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("printf other | xclip -i -selection primary >/dev/null 2>&1")});
    EXPECT_EQ(selectionViaClipboard(), std::nullopt);
    EXPECT_EQ(string(), QStringLiteral("kept"));
    paste(QStringLiteral("alive"));
    EXPECT_TRUE(gets("alive")) << typed().toStdString();
}

TEST_P(Terminals, APictureIsNotPastedAsSomethingElse) {
    open(QStringLiteral("ready"));
    run(QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("printf other | xclip -i -selection primary >/dev/null 2>&1")});
    pasteboard->writeItems({item({{QStringLiteral("image/png"), "picture"}})});
    poster->press(keys::keyV, keys::commandFlag);
    poster->press(keys::keyV, keys::noModifiers);
    ASSERT_TRUE(gets("v")) << typed().toStdString();
    runQtUntil([] { return false; }, 1s);  // by then the terminal has asked for a text and was refused
    paste(QStringLiteral("text"));
    EXPECT_TRUE(gets("vtext")) << typed().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Real, Terminals, ::testing::Values("xterm", "lxterminal"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace

}  // namespace tavrelon::testing
