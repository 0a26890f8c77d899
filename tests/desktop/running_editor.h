#pragma once

#include <QProcess>
#include <QTemporaryDir>
#include <optional>
#include <vector>

#include "support/waiting.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::testing {

/// A real application with one field to write in. It has the focus when the constructor returns.
class RunningEditor {
 public:
    enum class Kind {
        Mousepad,
        GnomeTextEditor,
        Featherpad,
        Qt6Editor,
        Chromium,
        ChromiumAccessible,
        Xterm,
        Lxterminal,
        Firefox,
        LibreOffice,
    };

    RunningEditor(Kind kind, XTestKeyboard& keyboard, const QString& text);
    ~RunningEditor();

    /// What the field holds in the end; waits for `expected`, and gives what is there when it does not come.
    QString saved(const QString& expected, std::chrono::milliseconds limit = std::chrono::seconds(10));

    /// What it has told of the text so far: of a terminal the ended lines, of an editor what it saved.
    QString shown();

    /// Replaces all the text, with the caret between the two parts. A terminal gets a new line instead, in which
    /// nothing can stand behind the caret.
    void refill(const QString& before, const QString& after);

    /// Types characters of a US keyboard; what it lacks is pasted. Behind a `refill` it waits until the field holds
    /// them.
    void type(const QString& text);
    void paste(const QString& text);

    /// Selects the characters before the caret.
    void selectBackward(int count);
    void undo();

    bool isTerminal() const;
    /// Whether the field cannot be read by accessibility, or not reliably in time, so that a request is what was typed.
    bool isKnownByKeysOnly() const;
    void signal(int number) const;
    qint64 process() const { return process_.processId(); }

 private:
    /// Where one can see what the field holds.
    enum class Shown { InItsFile, InItsTitle, InLines, ByCopying };
    struct Program;

    static Program programOf(Kind kind, const QString& folder, const QString& path);
    QString withoutEnd(const QString& text) const;
    bool comesToHold(const QString& expected, std::chrono::milliseconds limit);
    /// Waits until the application has taken what was typed, however busy the machine is.
    void settle();

    QTemporaryDir folder_;
    QString path_;
    XTestKeyboard& keyboard_;
    Kind kind_;
    Shown shown_ = Shown::InItsFile;
    qsizetype earlierLines_ = 0;     ///< bytes of what a terminal's program got before the line at hand
    std::optional<QString> before_;  ///< what stands before the caret since the last `refill`
    QString typed_;
    QString after_;
    QProcess process_;
};

/// Every application with the name by which tests and tables know it.
struct NamedEditor {
    const char* name;
    RunningEditor::Kind kind;
};
const std::vector<NamedEditor>& namedEditors();
RunningEditor::Kind editorNamed(const QByteArray& name);

/// Puts a text on the clipboard (and where `selection` says so elsewhere), owned by another program.
void setClipboard(const QString& text, const QString& selection = QStringLiteral("clipboard"));

/// The pause of a person between two thoughts. Editors take keys in their own time, and Qt sends typed keys on a detour
/// over the accessibility bus but shortcuts not, so that a shortcut on the heels of a key overtakes it.
void letKeysArrive();

void pressToggleHotkey(XTestKeyboard& keyboard);

}  // namespace tavrelon::testing
