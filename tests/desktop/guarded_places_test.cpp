// The program itself where it must keep its hands off: password fields, windows that came in between, and terminals.
#include <gtest/gtest.h>

#include <QDirIterator>
#include <memory>

#include "desktop/main_job_session.h"
#include "desktop/tools.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

const auto canary = QStringLiteral("hunter2");

class GuardedPlaces : public ::testing::Test {
 public:
    StandInService service;
    XTestKeyboard keyboard;
    RunningTavrelon tavrelon{service};  // first, so that applications find accessibility switched on
    QTemporaryDir folder;
    QString fieldFile = folder.filePath(QStringLiteral("field"));

    void answer(const QString& content, std::chrono::milliseconds delay = 0ms) {
        StandInAnswer answer;
        answer.content = content;
        answer.delayMs = static_cast<int>(delay.count());
        service.ledger().script({answer});
    }
    std::unique_ptr<RunningProgram> openPasswordField(const QString& toolkit) {
        qputenv("GSK_RENDERER", "cairo");
        auto program =
            toolkit == QStringLiteral("chromium")
                ? openPage()
                : std::make_unique<RunningProgram>(QStringLiteral(PASSWORD_FIELD), QStringList{toolkit, fieldFile});
        EXPECT_TRUE(eventually([] { return frontmostTitle() == QStringLiteral("password"); }, 60s));
        letPass(1500ms);  // in which it joins the bus
        return program;
    }
    /// A page's title tells how much its field holds.
    std::unique_ptr<RunningProgram> openPage() {
        const auto page = folder.filePath(QStringLiteral("page.html"));
        writeWhole(page,
                   "<!DOCTYPE html><title>password</title><input type=password autofocus "
                   "oninput=\"document.title='password '+this.value.length\">");
        return std::make_unique<RunningProgram>(
            QStringLiteral("chromium"),
            QStringList{QStringLiteral("--force-renderer-accessibility"), QStringLiteral("--no-sandbox"),
                        QStringLiteral("--user-data-dir=") + folder.filePath(QStringLiteral("profile")),
                        QStringLiteral("--no-first-run"), QStringLiteral("--disable-gpu"),
                        QStringLiteral("--disable-dev-shm-usage"), QStringLiteral("--disable-background-networking"),
                        QStringLiteral("--app=file://") + page});
    }
    bool holdsTheCanaryAlone() const {
        return contentsOf(fieldFile) == canary.toUtf8() ||
               frontmostTitle() == QStringLiteral("password %1").arg(canary.size());
    }
    static QString clipboard() {
        return QString::fromUtf8(outputOf(QStringLiteral("xclip"), {QStringLiteral("-o"), QStringLiteral("-selection"),
                                                                    QStringLiteral("clipboard")}));
    }
    static void bringToFront(const QString& titlePart) {
        xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), titlePart,
                 QStringLiteral("windowactivate"), QStringLiteral("--sync")});
        letKeysArrive();
    }
    void typeCanary() {
        letKeysArrive();
        xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("30"), canary});
        letKeysArrive();
    }
    /// In nothing that left, that is stored, logged or copied.
    void expectNowhere(const QString& secret) {
        for (const auto& request : service.ledger().requests())
            EXPECT_FALSE(request.body.contains(secret.toUtf8())) << request.body.toStdString();
        QDirIterator files(tavrelon.home(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const auto file = files.next();
            EXPECT_FALSE(contentsOf(file).contains(secret.toUtf8())) << qPrintable(file);
        }
        EXPECT_FALSE(clipboard().contains(secret));
    }
};

class PasswordFields : public GuardedPlaces, public ::testing::WithParamInterface<const char*> {};

TEST_P(PasswordFields, NoInputStartsInOneAndItsKeysGoNowhere) {
    const auto program = openPasswordField(QString::fromLatin1(GetParam()));
    setClipboard(QStringLiteral("kept"), QStringLiteral("clipboard"));
    answer(QStringLiteral("ANSWER"));
    pressToggleHotkey(keyboard);
    ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[StateMachine] Password field"), 1)) << qPrintable(tavrelon.log());
    typeCanary();
    pressToggleHotkey(keyboard);
    ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[StateMachine] Password field"), 2)) << qPrintable(tavrelon.log());
    letPass(1500ms);
    EXPECT_TRUE(holdsTheCanaryAlone()) << contentsOf(fieldFile).toStdString() << frontmostTitle().toStdString();
    EXPECT_EQ(clipboard(), QStringLiteral("kept"));
    EXPECT_TRUE(service.ledger().requests().empty());
    EXPECT_EQ(tavrelon.historyCount(), 0);
    expectNowhere(canary);
}

INSTANTIATE_TEST_SUITE_P(Toolkits, PasswordFields, ::testing::Values("gtk3", "gtk4", "qt", "chromium"),
                         [](const auto& info) { return std::string(info.param); });

TEST_F(GuardedPlaces, AnInputThatIsOpenEndsWhenAPasswordFieldGetsTheFocus) {
    const auto program = openPasswordField(QStringLiteral("gtk3"));
    RunningEditor terminal(RunningEditor::Kind::Xterm, keyboard, QString());
    pressToggleHotkey(keyboard);
    ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[Hotkey] Starting text listening"), 1));
    terminal.type(QStringLiteral("a question"));
    bringToFront(QStringLiteral("^password$"));
    ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[StateMachine] Password field"), 1)) << qPrintable(tavrelon.log());
    typeCanary();
    bringToFront(QStringLiteral("field.txt"));
    pressToggleHotkey(keyboard);
    letPass(2s);
    EXPECT_EQ(contentsOf(fieldFile), canary.toUtf8());
    expectNowhere(canary);
}

TEST_F(GuardedPlaces, AnAnswerThatFindsAPasswordFieldOrAnotherWindowInFrontChangesNothing) {
    RunningEditor editor(RunningEditor::Kind::Mousepad, keyboard, QString());
    answer(QStringLiteral("ANSWER"), 6s);
    pressToggleHotkey(keyboard);
    ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[Hotkey] Starting text listening"), 1));
    editor.type(QStringLiteral("a question"));
    pressToggleHotkey(keyboard);
    ASSERT_TRUE(eventually([this] { return !service.ledger().requests().empty(); })) << qPrintable(tavrelon.log());
    const auto program = openPasswordField(QStringLiteral("gtk3"));
    typeCanary();
    ASSERT_TRUE(eventually([this] { return tavrelon.log().contains(QStringLiteral("Answer is on the clipboard")); }))
        << qPrintable(tavrelon.log());
    letPass(1s);
    EXPECT_EQ(contentsOf(fieldFile), canary.toUtf8());
    EXPECT_EQ(clipboard(), QStringLiteral("ANSWER"));
    EXPECT_EQ(tavrelon.historyCount(), 1);
    expectNowhere(canary);
    bringToFront(QStringLiteral("field.txt"));
    EXPECT_EQ(editor.saved(QStringLiteral("a question")), QStringLiteral("a question"));
}

class TerminalLines : public GuardedPlaces, public ::testing::WithParamInterface<RunningEditor::Kind> {};

TEST_P(TerminalLines, OneLineGoesInWithoutItsEndAndSeveralStayOnTheClipboard) {
    RunningEditor terminal(GetParam(), keyboard, QString());
    const auto request = [&](const QString& content, int times) {
        answer(content);
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[Hotkey] Starting text listening"), times));
        terminal.type(QStringLiteral("question"));
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(eventually([&] { return tavrelon.historyCount() == times; })) << qPrintable(tavrelon.log());
        letPass(2500ms);
    };
    request(QStringLiteral("touch one\n"), 1);
    EXPECT_EQ(terminal.shown(), QString()) << "the line was not ended";
    EXPECT_EQ(terminal.saved(QStringLiteral("touch one")), QStringLiteral("touch one"));
    terminal.refill(QString(), QString());
    request(QStringLiteral("one\ntwo"), 2);
    EXPECT_TRUE(tavrelon.log().contains(QStringLiteral("Answer is on the clipboard"))) << qPrintable(tavrelon.log());
    EXPECT_EQ(clipboard(), QStringLiteral("one\ntwo"));
    EXPECT_EQ(terminal.saved(QStringLiteral("question")), QStringLiteral("question"));
}

INSTANTIATE_TEST_SUITE_P(Real, TerminalLines,
                         ::testing::Values(RunningEditor::Kind::Xterm, RunningEditor::Kind::Lxterminal),
                         [](const auto& info) {
                             return info.param == RunningEditor::Kind::Xterm ? "xterm" : "lxterminal";
                         });

}  // namespace

}  // namespace tavrelon::testing
