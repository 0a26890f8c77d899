#include "capture/context_capturer.h"

#include <gtest/gtest.h>

#include "support/qt_gtest.h"
#include "support/run_task.h"
#include "support/test_desktop.h"

namespace tavrelon::capture {

using namespace std::chrono_literals;
using platform::AXAttribute;
using platform::AXElement;
using platform::AXError;
using tavrelon::testing::runTask;
using tavrelon::testing::TestDesktop;
using Kind = AXElement::Kind;

class ContextCapturerTest : public ::testing::Test {
 public:
    TestDesktop desk;
    ContextCapturer capturer{desk.platform};

    CapturedContext capture() {
        return runTask(desk.loop, capturer.captureContext(QStringLiteral("typed"), ScreenshotWish::Include));
    }
    int systemReads() const { return desk.accessibility.callCount(Kind::SystemWide, AXAttribute::FocusedUIElement); }
    int logged(const char* line) const { return static_cast<int>(desk.log.lines().count(QString::fromUtf8(line))); }
};

TEST_F(ContextCapturerTest, TellsWhatTheUserLooksAt) {
    desk.editor.open(QStringLiteral("one two"));
    desk.editor.select(4, 3);
    EXPECT_EQ(capture(),
              (CapturedContext{QStringLiteral("typed"), QStringLiteral("org.example.editor"), QStringLiteral("Editor"),
                               QStringLiteral("Untitled"), std::nullopt, QStringLiteral("two")}));
    const auto snapshot = capturer.fetchFocusedTextSnapshot().value();
    EXPECT_EQ(snapshot.value, QStringLiteral("one two"));
    EXPECT_EQ(snapshot.selectedRange, (text::Utf16Range{4, 3}));
    desk.editor.open(QStringLiteral("Dear \uFFFC"));
    EXPECT_EQ(capturer.fetchFocusedTextSnapshot(), std::nullopt) << "some of the text lies elsewhere";
}

TEST_F(ContextCapturerTest, WithoutTrustOnlyTheApplicationIsKnown) {
    desk.editor.open(QStringLiteral("one two"));
    desk.accessibility.trusted = false;
    const auto context = capture();
    EXPECT_EQ(context.appName, QStringLiteral("Editor"));
    EXPECT_EQ(context.selection, std::nullopt);
    EXPECT_EQ(context.windowTitle, std::nullopt);
    EXPECT_EQ(capturer.fetchFocusedTextSnapshot(), std::nullopt);
    EXPECT_TRUE(desk.accessibility.calls().empty());
}

TEST_F(ContextCapturerTest, AnUnresponsiveApplicationIsLeftAloneForAWhile) {
    desk.accessibility.fail(Kind::SystemWide, AXAttribute::FocusedUIElement, AXError::CannotComplete);
    desk.accessibility.fail(Kind::Application, AXAttribute::FocusedUIElement, AXError::CannotComplete);
    capturer.fetchFocusedTextSnapshot();
    desk.loop.advance(300ms);
    capturer.fetchFocusedTextSnapshot();
    EXPECT_EQ(systemReads(), 1);
    desk.loop.advance(200ms);
    capturer.fetchFocusedTextSnapshot();
    EXPECT_EQ(systemReads(), 2) << "the second look must not have prolonged the cool-down";
    const char* line = "[ContextCapturer] Failed to get focused element (system-wide), error: kAXErrorCannotComplete";
    EXPECT_EQ(logged(line), 1);
    desk.loop.advance(2s);
    capturer.fetchFocusedTextSnapshot();
    EXPECT_EQ(logged(line), 2);
}

TEST_F(ContextCapturerTest, FallsBackToTheFrontmostApplication) {
    desk.editor.open(QStringLiteral("text"));
    desk.accessibility.fail(Kind::SystemWide, AXAttribute::FocusedUIElement, AXError::NoValue);
    desk.accessibility.fail(Kind::SystemWide, AXAttribute::FocusedApplication, AXError::NoValue);
    EXPECT_TRUE(capturer.fetchFocusedTextSnapshot());
    EXPECT_EQ(logged("[ContextCapturer] Falling back to frontmost app: Editor (1234)"), 1);
    desk.workspace.focusNothing();
    EXPECT_FALSE(capturer.fetchFocusedTextSnapshot());
    EXPECT_EQ(logged("[ContextCapturer] No frontmost application available for fallback"), 1);
}

class WindowedValueTest : public ContextCapturerTest {
 public:
    text::Utf16Range askedFor(text::Utf16Range selection) {
        desk.accessibility.clearCalls();
        desk.accessibility.answer(Kind::Object, AXAttribute::SelectedTextRange, selection);
        desk.accessibility.answer(Kind::Object, AXAttribute::AttributedStringForRange,
                                  platform::AXAttributedString{QStringLiteral("near")});
        found = capturer.fetchFocusedTextSnapshot();
        for (const auto& call : desk.accessibility.calls())
            if (call.range)
                return *call.range;
        return {-1, -1};
    }
    std::optional<AccessibilityTextSnapshot> found;
};

TEST_F(WindowedValueTest, ABlankValueIsReadNearTheSelection) {
    desk.editor.open(QStringLiteral(" \n"));
    EXPECT_EQ(askedFor({0, 0}), (text::Utf16Range{0, 1024}));
    EXPECT_EQ(askedFor({100, 10}), (text::Utf16Range{0, 1034}));
    EXPECT_EQ(found->selectedRange, (text::Utf16Range{100, 10}));
    EXPECT_EQ(askedFor({1000, 10}), (text::Utf16Range{488, 1034}));
    EXPECT_EQ(found->value, QStringLiteral("near"));
    EXPECT_EQ(found->selectedRange, (text::Utf16Range{512, 10}));
    EXPECT_EQ(found->offset, 488);
    EXPECT_EQ(askedFor({-1, 0}), (text::Utf16Range{-1, -1})) << "a location of -1 is no range";
    EXPECT_EQ(found->value, QStringLiteral(" \n"));
    EXPECT_EQ(found->selectedRange, std::nullopt);
}

class ClipboardSelectionTest : public ContextCapturerTest {
 public:
    std::vector<platform::PasteboardItem> before{
        {{{QStringLiteral("image/png"), "pixels"}, {QStringLiteral("text/plain"), "old"}}}};

    ClipboardSelectionTest() { desk.pasteboard.copyElsewhere(before); }

    std::optional<QString> read(SelectAll selectAll) {
        desk.pasteboard.clearJournal();
        desk.keyPoster.clear();
        return runTask(desk.loop, capturer.selectionViaClipboard(selectAll));
    }
    bool restoredOnce() const { return desk.pasteboard.journal().count(QStringLiteral("writeItems")) == 1; }
};

TEST_F(ClipboardSelectionTest, InAPasswordFieldNoKeyIsPressed) {
    desk.editor.open(QStringLiteral("hunter2"));
    desk.editor.select(0, 7);
    desk.accessibility.fieldKind = platform::FocusKind::Password;
    EXPECT_EQ(read(SelectAll::Allowed), std::nullopt);
    EXPECT_TRUE(desk.keyPoster.strokes().empty());
    EXPECT_TRUE(desk.pasteboard.journal().isEmpty());
}

TEST_F(ClipboardSelectionTest, WithoutASelectionTheWholeFieldIsTaken) {
    desk.editor.open(QStringLiteral("all of it"));
    const auto start = desk.loop.now();
    EXPECT_EQ(read(SelectAll::Allowed), QStringLiteral("all of it"));
    EXPECT_EQ(desk.loop.now() - start, 160ms);
    EXPECT_EQ(desk.pasteboard.contents(), before);
    EXPECT_EQ(read(SelectAll::Forbidden), QStringLiteral("all of it")) << "it stays selected";
    for (const auto& line : desk.log.lines())
        EXPECT_FALSE(line.contains(QLatin1Char('9'))) << "no line tells how long a text is: " << line.toStdString();
}

TEST_F(ClipboardSelectionTest, AnApplicationThatIgnoresCopyLeavesTheClipboardUntouched) {
    desk.editor.open(QString());
    EXPECT_EQ(read(SelectAll::Allowed), std::nullopt);
    EXPECT_EQ(desk.pasteboard.journal(), QStringList{QStringLiteral("items")});
    EXPECT_EQ(desk.keyPoster.strokes().size(), 3U);
    EXPECT_EQ(read(SelectAll::Forbidden), std::nullopt);
    EXPECT_EQ(desk.keyPoster.strokes().size(), 1U);
    EXPECT_EQ(logged("[ContextCapturer] Clipboard fallback did not capture selection"), 2);
}

TEST_F(ClipboardSelectionTest, NoKeyIsPressedAnyMoreOnceAnotherWindowOrAPasswordFieldIsInFront) {
    desk.editor.open(QString());
    const std::function<void()> changes[]{[this] { desk.workspace.focus({77, {}, {}, 78}); },
                                          [this] { desk.accessibility.fieldKind = platform::FocusKind::Password; }};
    for (const auto& change : changes) {
        desk.keyPoster.onPress = [&](const auto&) { change(); };
        EXPECT_EQ(read(SelectAll::Allowed), std::nullopt);
        EXPECT_EQ(desk.keyPoster.strokes().size(), 1U);
        EXPECT_EQ(desk.pasteboard.contents(), before);
    }
}

TEST_F(ClipboardSelectionTest, ACopiedPictureIsNoTextAndTheClipboardIsGivenBack) {
    desk.keyPoster.onPress = [this](const auto& stroke) {
        if (stroke.is(keys::keyC, keys::commandFlag))
            desk.pasteboard.copyElsewhere({{{{QStringLiteral("image/png"), "other"}}}});
    };
    EXPECT_EQ(read(SelectAll::Allowed), std::nullopt);
    EXPECT_EQ(desk.keyPoster.strokes().size(), 3U);
    EXPECT_TRUE(restoredOnce());
    EXPECT_EQ(desk.pasteboard.contents(), before);
}

TEST_F(ClipboardSelectionTest, AHungOwnerCostsABoundedWaitAndNothingIsPretended) {
    desk.pasteboard.setOwner(tavrelon::testing::FakePasteboard::Owner::Hangs);
    desk.keyPoster.onPress = {};
    const auto start = desk.loop.now();
    EXPECT_EQ(read(SelectAll::Allowed), std::nullopt);
    EXPECT_LE(desk.loop.now() - start, 2s);
    EXPECT_TRUE(desk.keyPoster.strokes().empty()) << "a copy would lose what is on the clipboard";
    EXPECT_EQ(desk.pasteboard.contents(), before);
    EXPECT_FALSE(restoredOnce());
    EXPECT_EQ(desk.log.lines().filter(QStringLiteral("could not be put back")).size(), 1);
}

TEST_F(ClipboardSelectionTest, ACancelledReadStillGivesTheClipboardBack) {
    desk.editor.open(QStringLiteral("one two"));
    desk.editor.select(4, 3);
    const auto body = [](ContextCapturer& capturer) -> async::Task<void> {
        co_await capturer.selectionViaClipboard(SelectAll::Allowed);
    };
    async::TaskScope scope(desk.loop);
    const auto task = scope.spawn(body(capturer));
    desk.loop.advance(30ms);
    ASSERT_NE(desk.pasteboard.contents(), before);
    task.cancel();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.pasteboard.contents(), before);
    EXPECT_EQ(desk.keyPoster.asideDepth(), 0);
}

}  // namespace tavrelon::capture
