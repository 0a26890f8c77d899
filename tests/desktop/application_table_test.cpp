// What works in one application, as seen: a row of the table of applications.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cmath>
#include <string_view>

#include "capture/cursor_locator.h"
#include "desktop/real_desk.h"
#include "desktop/running_editor.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

enum class Column { Value, Selection, TypedRequest, SelectionRequest, ByAccessibility, ByPaste, Caret, Undo };

/// Why something does not work in an application, for everything of which this is known.
struct Known {
    std::string_view application;
    Column column;
    const char* reason;
};

constexpr auto silent = "tells accessibility nothing unless started with --force-renderer-accessibility";
constexpr auto notEditable = "offers no interface for editing";
constexpr auto oneHeight = "says that all lines are at the height of the first; the field's frame serves";
constexpr auto absent = "is not on the accessibility bus";
constexpr auto screenOnly = "tells its screen, which is no field";
constexpr auto keptByProgram = "cannot take back what its program has got";

constexpr Known known[] = {
    {"featherpad", Column::Caret, oneHeight},
    {"qt6-editor", Column::Caret, oneHeight},
    {"chromium", Column::Value, silent},
    {"chromium", Column::Selection, silent},
    {"chromium", Column::ByAccessibility, silent},
    {"chromium", Column::Caret, silent},
    {"chromium-accessible", Column::ByAccessibility, notEditable},
    {"xterm", Column::Value, absent},
    {"xterm", Column::Selection, absent},
    {"xterm", Column::ByAccessibility, absent},
    {"xterm", Column::Caret, absent},
    {"xterm", Column::Undo, keptByProgram},
    {"lxterminal", Column::Value, screenOnly},
    {"lxterminal", Column::Selection, screenOnly},
    {"lxterminal", Column::ByAccessibility, screenOnly},
    {"firefox", Column::ByAccessibility, "answers that it wrote and changes nothing"},
    {"libreoffice", Column::Value, "tells the paragraph of the caret only"},
    {"libreoffice", Column::Caret, "tells places that are off by more than a line"},
    {"lxterminal", Column::Undo, keptByProgram},
};

class ApplicationTable : public RealDesk, public ::testing::Test {
 public:
    QByteArray name = qgetenv("TAVRELON_TEST_EDITOR");
    XTestKeyboard keyboard;
    capture::CursorLocator locator{accessibility};
    RunningEditor editor{editorNamed(name), keyboard, QString()};
    // A terminal keeps showing it, and ASCII text beside another script passes for half of a composition.
    QString answer = editor.isTerminal() ? QStringLiteral("ANSWER") : QStringLiteral("ANSWER 你好 👍");
    QString beforeWord = QStringLiteral("<before ");
    QString behindWord = editor.isTerminal() ? QString() : QStringLiteral(" after>");
    QStringList cells{QString::fromLatin1(name)};

    /// Enters what was seen. What does not work must be known, and what is known not to work must not.
    void see(Column column, bool works, const QString& yes = QStringLiteral("yes")) {
        const auto* const found = std::ranges::find_if(known, [&](const Known& entry) {
            return entry.application == name.toStdString() && entry.column == column;
        });
        const auto reason = found == std::end(known) ? QString() : QString::fromLatin1(found->reason);
        EXPECT_EQ(works, reason.isEmpty()) << "in column " << static_cast<int>(column) << " of " << name.data();
        cells << (works ? yes : QStringLiteral("no: ") + reason);
    }

    std::optional<QString> selectedText() { return runTaskOnQt(loop, capturer.selectedText()); }

    /// What the caret is in, of two lines; a terminal has one line at a time.
    QString twoLines() const {
        return editor.isTerminal() ? QStringLiteral("one line") : QStringLiteral("first ab😀\nsecond line");
    }
    bool readsValue() {
        return eventually(
            [&] {
                const auto seen = capturer.fetchFocusedTextSnapshot();
                return seen && seen->value == twoLines();
            },
            3s);
    }

    /// Selects "word" in the line, or the word on a terminal's first row.
    void selectWord() {
        if (!editor.isTerminal())
            return editor.selectBackward(4);
        clickFirstRow("2");
    }
    void clickFirstRow(const char* times) {
        const auto window = std::to_string(workspace->frontmostApplication()->windowIdentifier);
        // The first pixels below a menu bar, if there is one, are the first row.
        runProgram({"xdotool", "mousemove", "--window", window.c_str(), "20", name == "xterm" ? "8" : "40", "click",
                    "--repeat", times, "1"});
        letPass(600ms);  // longer than a double click
    }
    QString word() const { return editor.isTerminal() ? QStringLiteral("oneword") : QStringLiteral("word"); }
    QString lineWith(const QString& text) const { return beforeWord + text + behindWord; }

    /// Opens the input, types, commits, and waits until the answer is written.
    void request(const QString& typed) {
        const auto asked = generator.requests.size();
        generator.script = {generation::GenerationResult{.text = answer}};
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(eventually([&] { return state() == input::InputState::Case::listening; }));
        letKeysArrive();
        editor.type(typed);
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(eventually([&] { return generator.requests.size() > asked; }))
            << "nothing was asked\n"
            << log.lines().join(u'\n').toStdString();
        ASSERT_TRUE(eventually([&] { return state() == input::InputState::Case::idle; }));
    }
    bool asksAndWrites(const QString& asked) {
        const auto wanted = lineWith(answer);
        EXPECT_EQ(generator.requests.back().input, asked);
        const auto held = editor.saved(wanted);
        EXPECT_EQ(held, wanted) << log.lines().join(u'\n').toStdString();
        return generator.requests.back().input == asked && held == wanted;
    }

    /// Whether the caret's place follows the caret to the right and to the second line.
    bool followsCaret() {
        constexpr place::Code home = 110, right = 114, down = 116;
        const auto placeBehind = [&](place::Code key) {
            keyboard.strike(key);
            letKeysArrive();
            return locator.caretRect();
        };
        if (editor.isTerminal()) {
            clickFirstRow("1");  // or the selection's place would be told
            const auto before = locator.caretRect();
            const auto after = placeBehind(place::x);
            return before && after && after->origin.x > before->origin.x && after->size.height < 60;
        }
        keyboard.strikeWith({place::leftControl}, home);
        letKeysArrive();
        const auto first = locator.caretRect();
        const auto second = placeBehind(right);
        const auto third = placeBehind(down);
        return first && second && third && second->origin.x > first->origin.x && second->size.height < 60 &&
               third->origin.y > second->origin.y && third->origin.y < second->origin.y + 60 && isFoundAt(*third);
    }
    /// Whether a click at the caret's place puts the caret there from elsewhere.
    bool isFoundAt(const platform::AXRect& caret) {
        constexpr place::Code home = 110;
        const auto before = capturer.fetchFocusedTextSnapshot();
        keyboard.strikeWith({place::leftControl}, home);
        letKeysArrive();
        const auto elsewhere = capturer.fetchFocusedTextSnapshot();
        const auto x = std::to_string(std::lround(caret.origin.x));
        const auto y = std::to_string(std::lround(caret.origin.y + caret.size.height / 2));
        runProgram({"xdotool", "mousemove", x.c_str(), y.c_str(), "click", "1"});
        const auto isBack = [&] {
            const auto now = capturer.fetchFocusedTextSnapshot();
            return now && now->value == before->value && now->selectedRange == before->selectedRange;
        };
        return before && elsewhere && elsewhere->selectedRange != before->selectedRange && eventually(isBack, 3s);
    }

    /// The number of undo steps that bring the line back, 0 when two do not.
    int stepsBackTo(const QString& line) {
        for (const int step : {1, 2}) {
            editor.undo();
            if (editor.saved(line, 2s) == line)
                return step;
        }
        return 0;
    }

    void keepRow() {
        const auto folder = qEnvironmentVariable("TAVRELON_TABLE_FOLDER");
        if (folder.isEmpty())
            return;
        QDir().mkpath(folder);
        QFile file(folder + QLatin1Char('/') + cells.front());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(cells.join(u'\t').toUtf8() + '\n');
    }
};

TEST_F(ApplicationTable, Row) {
    editor.refill(twoLines(), QString());
    see(Column::Value, readsValue());
    selectWord();
    const auto selection = editor.isTerminal() ? word() : QStringLiteral("line");
    see(Column::Selection, eventually([&] { return selectedText() == selection; }, 3s));
    const bool caret = followsCaret();

    editor.refill(beforeWord, behindWord);
    request(QStringLiteral("what is 42?"));
    const bool pasted = runTaskOnQt(loop, pasteboard->string()) == answer;
    see(Column::TypedRequest, asksAndWrites(QStringLiteral("what is 42?")));

    const auto before = lineWith(editor.isTerminal() ? QString() : word());
    editor.refill(beforeWord + (editor.isTerminal() ? QString() : word()), behindWord);
    selectWord();
    const auto changes = pasteboard->changeCount();
    request(QString());
    const bool byAccessibility = pasteboard->changeCount() == changes;
    see(Column::SelectionRequest, asksAndWrites(word()));
    see(Column::ByAccessibility, byAccessibility);
    see(Column::ByPaste, pasted);
    see(Column::Caret, caret);
    const int steps = stepsBackTo(before);
    see(Column::Undo, steps > 0, steps == 1 ? QStringLiteral("1 step") : QStringLiteral("2 steps"));
    keepRow();
}

}  // namespace

}  // namespace tavrelon::testing
