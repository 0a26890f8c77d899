#include "output/output_writer.h"

#include <gtest/gtest.h>

#include "support/qt_gtest.h"
#include "support/run_task.h"
#include "support/test_desktop.h"

namespace tavrelon::output {

using namespace std::chrono_literals;
using tavrelon::testing::runTask;
using tavrelon::testing::TestDesktop;
using Method = scenes::ReplacementStrategy::Method;

/// The fake keyboard blocks nobody for it.
constexpr auto chord = platform::KeyPoster::chordWait;

class OutputWriterTest : public ::testing::Test {
 public:
    TestDesktop desk;
    OutputWriter writer{desk.platform};
    const platform::PasteboardItem picture{{{QStringLiteral("image/png"), "pixels"}}};

    std::chrono::nanoseconds write(Method method, std::optional<qint64> count, qint64 fallback = 0) {
        const auto start = desk.loop.now();
        runTask(desk.loop, writer.writeText(QStringLiteral("new"), method, count, fallback));
        return desk.loop.now() - start;
    }
    std::vector<std::chrono::nanoseconds> gaps() const {
        std::vector<std::chrono::nanoseconds> found;
        const auto& strokes = desk.keyPoster.strokes();
        for (std::size_t i = 1; i < strokes.size(); ++i)
            found.push_back(strokes[i].at - strokes[i - 1].at);
        return found;
    }
};

TEST_F(OutputWriterTest, EachWayTakesItsTime) {
    desk.editor.open(QStringLiteral("abc"));
    EXPECT_EQ(write(Method::deleteChars, 3), 200ms - chord);
    EXPECT_EQ(gaps(), (std::vector<std::chrono::nanoseconds>{10ms, 10ms, 80ms - chord}));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("new"));
    EXPECT_EQ(write(Method::deleteChars, 0, 5), 170ms - chord);
    EXPECT_EQ(write(Method::deleteChars, std::nullopt, 3), 200ms - chord);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("newnew")) << "a count of 0 beats the fall-back";
    EXPECT_EQ(write(Method::replaceComposition, std::nullopt), 170ms - chord);
    EXPECT_EQ(desk.keyPoster.count(keys::keyEscape, keys::noModifiers), 1);
    desk.editor.select(0, 3);
    EXPECT_EQ(write(Method::replaceSelection, std::nullopt), 0ms);
    desk.accessibility.setSelectedTextResult = platform::AXError::Failure;
    EXPECT_EQ(write(Method::replaceSelection, std::nullopt), 120ms - chord);
}

TEST_F(OutputWriterTest, TheEarlierClipboardIsGoneAndTheAnswerStays) {
    desk.pasteboard.copyElsewhere({{{{QStringLiteral("image/png"), "pixels"}}}});
    desk.editor.open(QString());
    writer.useClipboardFallback = false;
    write(Method::deleteChars, 0);
    EXPECT_EQ(desk.pasteboard.contents(), tavrelon::testing::FakePasteboard::itemsOf(QStringLiteral("new")));
}

TEST_F(OutputWriterTest, AHungClipboardOwnerDoesNotDelayAPaste) {
    desk.pasteboard.copyElsewhere(QStringLiteral("old"));
    desk.pasteboard.setOwner(tavrelon::testing::FakePasteboard::Owner::Hangs);
    desk.editor.open(QString());
    EXPECT_EQ(write(Method::deleteChars, 0), 170ms - chord);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("new"));
}

TEST_F(OutputWriterTest, AKeptClipboardComesBackOnceTheAnswerWasFetchedAndOnlyThen) {
    const std::vector<platform::PasteboardItem> before{picture};
    const auto answer = tavrelon::testing::FakePasteboard::itemsOf(QStringLiteral("new"));
    async::TaskScope scope(desk.loop);
    const auto paste = [&] {
        scope.spawn([](OutputWriter& to) -> async::Task<void> {
            co_await to.writeText(QStringLiteral("new"), Method::deleteChars, 0, 0);
        }(writer));
        desk.loop.advance(200ms);
    };
    const auto after = [&](std::chrono::milliseconds wait, bool fetched) {
        desk.pasteboard.fetched = fetched;
        desk.loop.advance(wait);
        return desk.pasteboard.contents();
    };
    writer.keepsClipboard = [] { return true; };
    desk.editor.open(QString());
    desk.pasteboard.copyElsewhere(before);
    paste();
    EXPECT_EQ(after(2s, false), answer);
    EXPECT_EQ(after(400ms, true), answer);
    paste();  // before it was given back
    EXPECT_EQ(after(2s, true), before);

    desk.pasteboard.fetched = false;
    paste();
    EXPECT_EQ(after(20s, false), answer) << "nobody took it: the user may have to paste it";
    desk.pasteboard.copyElsewhere(before);
    paste();
    desk.pasteboard.copyElsewhere(QStringLiteral("later"));
    EXPECT_EQ(after(2s, true), tavrelon::testing::FakePasteboard::itemsOf(QStringLiteral("later")));
    writer.keepsClipboard = [] { return false; };
    paste();
    EXPECT_EQ(after(2s, true), answer);
}

TEST_F(OutputWriterTest, ReplacingASelectionNeedsARightAndAnApplication) {
    const auto code = [this] {
        try {
            write(Method::replaceSelection, std::nullopt);
        } catch (const OutputWriterError& error) {
            return std::optional(error.code());
        }
        return std::optional<OutputWriterError::Code>();
    };
    desk.editor.open(QString());
    desk.workspace.tellsProcess = false;
    EXPECT_EQ(code(), std::nullopt);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("new")) << "a window in front takes a paste";
    desk.workspace.focusNothing();
    EXPECT_EQ(code(), OutputWriterError::Code::noFrontmostApp);
    desk.accessibility.trusted = false;
    EXPECT_EQ(code(), OutputWriterError::Code::permissionDenied);
    EXPECT_NO_THROW(write(Method::deleteChars, 1));
}

TEST_F(OutputWriterTest, AnApplicationThatStallsAmidAReplacementGetsNoPasteOnTop) {
    using platform::AXAttribute;
    using Kind = platform::AXElement::Kind;
    auto& accessibility = desk.accessibility;
    desk.editor.open(QStringLiteral("old"));
    desk.editor.select(0, 3);
    accessibility.setSelectedTextResult = platform::AXError::CannotComplete;
    accessibility.fail(Kind::Object, AXAttribute::Value, platform::AXError::CannotComplete);
    const auto wakesUp = desk.loop.after(1s, [&] {
        accessibility.answer(Kind::Object, AXAttribute::Value, platform::AXValue(QStringLiteral("a new text")));
    });
    EXPECT_LE(write(Method::replaceSelection, std::nullopt), 1200ms);
    EXPECT_EQ(desk.keyPoster.count(keys::keyV, keys::commandFlag), 0) << "the application did it after all";

    accessibility.answer(Kind::Object, AXAttribute::Value, platform::AXValue(QStringLiteral("old")));
    EXPECT_LE(write(Method::replaceSelection, std::nullopt), 300ms);
    EXPECT_EQ(desk.keyPoster.count(keys::keyV, keys::commandFlag), 1) << "it was not told, or did not obey";

    accessibility.fail(Kind::Object, AXAttribute::Value, platform::AXError::CannotComplete);
    EXPECT_LE(write(Method::replaceSelection, std::nullopt), 2500ms);
    EXPECT_EQ(desk.keyPoster.count(keys::keyV, keys::commandFlag), 2) << "it stays silent";
}

TEST_F(OutputWriterTest, NothingIsPastedFromAClipboardThatAnotherHolds) {
    desk.pasteboard.copyElsewhere(QStringLiteral("a password"));
    desk.pasteboard.refusesOurs = true;
    desk.editor.open(QStringLiteral("request"));
    EXPECT_THROW(write(Method::deleteChars, 3), OutputWriterError);
    EXPECT_THROW(runTask(desk.loop, writer.writeImage(picture, std::nullopt, AutoPaste::Yes)), OutputWriterError);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("request"));
}

/// What a write does where its place is not in front: no key, nothing written, the answer on the clipboard.
class AnswerPlaceTest : public OutputWriterTest {
 public:
    AnswerPlaceTest() {
        desk.editor.open(QStringLiteral("kept words"));
        writer.aim();
    }
    Placement place(Method method) { return runTask(desk.loop, writer.writeText(QStringLiteral("new"), method, 5, 0)); }
    void expectUntouched() {
        for (const auto method : {Method::deleteChars, Method::replaceSelection, Method::replaceComposition}) {
            desk.pasteboard.clearContents();
            EXPECT_EQ(place(method), Placement::OnClipboard);
            EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("new"));
        }
        EXPECT_EQ(runTask(desk.loop, writer.pasteText(QStringLiteral("reply"))), Placement::OnClipboard);
        EXPECT_EQ(runTask(desk.loop, writer.deleteBackward(1)), Placement::OnClipboard);
        const platform::PasteboardItem picture{{{QStringLiteral("image/png"), "pixels"}}};
        const auto outcome = runTask(desk.loop, writer.writeImage(picture, std::nullopt, AutoPaste::Yes));
        EXPECT_EQ(outcome.placement, Placement::OnClipboard);
        EXPECT_EQ(desk.pasteboard.contents().size(), 1U);
        desk.keyPoster.compositionOpen = true;
        runTask(desk.loop, writer.cancelComposition());
        EXPECT_TRUE(desk.keyPoster.strokes().empty());
        EXPECT_EQ(desk.editor.text(), QStringLiteral("kept words"));
    }
    void focusOther(qint64 process, quint64 window) {
        desk.workspace.focus({.processIdentifier = process,
                              .bundleIdentifier = std::nullopt,
                              .localizedName = std::nullopt,
                              .windowIdentifier = window});
    }
};

TEST_F(AnswerPlaceTest, AnotherWindowGetsNothing) {
    focusOther(1234, 2);  // of the same application
    expectUntouched();
}

TEST_F(AnswerPlaceTest, AProgramThatHoldsTheKeyboardGetsNothing) {
    desk.keyPoster.keyboardHeld = true;  // the screen is locked; the window beneath is still in front
    expectUntouched();
}

TEST_F(AnswerPlaceTest, AnotherProgramUnderTheOldWindowsNumberGetsNothing) {
    focusOther(99, 1);
    expectUntouched();
}

TEST_F(AnswerPlaceTest, APasswordFieldGetsNothingEvenInTheSameWindow) {
    desk.accessibility.fieldKind = platform::FocusKind::Password;
    expectUntouched();
}

TEST_F(AnswerPlaceTest, AnotherElementOfTheWindowGetsNothingUnlessTheOldOneIsGone) {
    desk.accessibility.fieldPath = QStringLiteral("/other");
    desk.accessibility.answer(platform::AXElement::Kind::Object, platform::AXAttribute::Size, platform::AXSize{9, 9});
    expectUntouched();
    desk.keyPoster.compositionOpen = false;
    desk.accessibility.fail(platform::AXElement::Kind::Object, platform::AXAttribute::Size,
                            platform::AXError::InvalidUIElement);
    EXPECT_EQ(place(Method::deleteChars), Placement::Written) << "some make the elements of a field anew";
}

TEST_F(AnswerPlaceTest, AFocusThatLeavesAmidTheKeysStopsThem) {
    desk.keyPoster.onPress = [&](const auto&) {
        if (desk.keyPoster.strokes().size() == 2)
            focusOther(99, 7);
    };
    EXPECT_EQ(place(Method::deleteChars), Placement::OnClipboard);
    EXPECT_EQ(desk.keyPoster.strokes().size(), 2U);
    EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("new"));
}

TEST_F(OutputWriterTest, ATerminalGetsOneLineWithoutItsEndAndNothingGetsControls) {
    const auto paste = [this](const QString& answer) {
        desk.editor.open(QString());
        return runTask(desk.loop, writer.writeText(answer, Method::deleteChars, 0, 0));
    };
    EXPECT_EQ(paste(QStringLiteral("a\u001b[201~\nb\r\n")), Placement::Written);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("a[201~\nb\n"));
    const auto inTerminal = [&] {
        EXPECT_EQ(paste(QStringLiteral("rm -r x\r\n\n")), Placement::Written);
        EXPECT_EQ(desk.editor.text(), QStringLiteral("rm -r x"));
        desk.keyPoster.clear();
        EXPECT_EQ(paste(QStringLiteral("one\ntwo")), Placement::OnClipboard);
        EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("one\ntwo"));
        EXPECT_TRUE(desk.keyPoster.strokes().empty());
    };
    desk.workspace.windowKind = platform::WindowKind::Terminal;
    inTerminal();
    desk.workspace.windowKind = platform::WindowKind::Ordinary;
    desk.accessibility.fieldKind = platform::FocusKind::Terminal;  // within another program's window
    desk.keyPoster.onPress = [&](const auto& stroke) {
        if (stroke.is(keys::keyV, keys::commandFlag | keys::shiftFlag))
            desk.editor.open(*desk.pasteboard.text());
    };
    inTerminal();
    desk.workspace.windowKind = platform::WindowKind::WithoutPaste;
    desk.accessibility.fieldKind = platform::FocusKind::Unknown;
    desk.keyPoster.clear();
    EXPECT_EQ(runTask(desk.loop, writer.writeText(QStringLiteral("x"), Method::deleteChars, 4, 0)),
              Placement::OnClipboard);
    EXPECT_TRUE(desk.keyPoster.strokes().empty());
}

TEST_F(OutputWriterTest, ACancelledWriteStopsBetweenItsKeys) {
    desk.editor.open(QStringLiteral("abcdef"));
    const auto body = [](OutputWriter& to) -> async::Task<void> {
        co_await to.writeText(QStringLiteral("new"), Method::deleteChars, 2, 0);
    };
    async::TaskScope scope(desk.loop);
    const auto task = scope.spawn(body(writer));
    desk.loop.advance(75ms);  // deleted, on the pasteboard, not yet pasted
    task.cancel();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("abcd"));
    EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("new"));
}

TEST_F(OutputWriterTest, Pictures) {
    const auto write = [this](const std::optional<platform::PasteboardItem>& item,
                              const std::optional<QString>& caption, AutoPaste autoPaste) {
        return runTask(desk.loop, writer.writeImage(item, caption, autoPaste)).text;
    };
    EXPECT_EQ(write(picture, std::nullopt, AutoPaste::No), QStringLiteral("图片已复制到剪贴板"));
    EXPECT_TRUE(desk.keyPoster.strokes().empty());
    EXPECT_EQ(write(picture, QStringLiteral("a cat"), AutoPaste::Yes), QStringLiteral("a cat"));
    EXPECT_EQ(desk.keyPoster.count(keys::keyV, keys::commandFlag), 1);
    EXPECT_EQ(write(std::nullopt, QStringLiteral("a cat"), AutoPaste::Yes), QStringLiteral("a cat"));
    EXPECT_TRUE(desk.pasteboard.contents().empty());
    EXPECT_THROW(write(std::nullopt, std::nullopt, AutoPaste::Yes), OutputWriterError);
}

}  // namespace tavrelon::output
