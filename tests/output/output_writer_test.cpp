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
    EXPECT_EQ(write(Method::deleteChars, 3), 200ms);
    EXPECT_EQ(gaps(), (std::vector<std::chrono::nanoseconds>{10ms, 10ms, 80ms}));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("new"));
    EXPECT_EQ(write(Method::deleteChars, 0, 5), 170ms);
    EXPECT_EQ(write(Method::deleteChars, std::nullopt, 3), 200ms);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("newnew")) << "a count of 0 beats the fall-back";
    EXPECT_EQ(write(Method::replaceComposition, std::nullopt), 170ms);
    EXPECT_EQ(desk.keyPoster.count(keys::keyEscape, keys::noModifiers), 1);
    desk.editor.select(0, 3);
    EXPECT_EQ(write(Method::replaceSelection, std::nullopt), 0ms);
    desk.accessibility.setSelectedTextResult = platform::AXError::Failure;
    EXPECT_EQ(write(Method::replaceSelection, std::nullopt), 120ms);
}

TEST_F(OutputWriterTest, HeldModifiersStayAsideFromTheFirstKeyToTheLast) {
    desk.editor.open(QStringLiteral("abc"));
    write(Method::deleteChars, 3);
    for (const auto& stroke : desk.keyPoster.strokes())
        EXPECT_GE(stroke.asideDepth, 1);
    EXPECT_EQ(desk.keyPoster.asideDepth(), 0);
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
    EXPECT_EQ(write(Method::deleteChars, 0), 170ms);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("new"));
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
    desk.editor.open(QString());
    EXPECT_THROW(write(Method::deleteChars, 0), OutputWriterError);
    EXPECT_THROW(runTask(desk.loop, writer.writeImage(picture, std::nullopt, AutoPaste::Yes)), OutputWriterError);
    EXPECT_EQ(desk.editor.text(), QString());
}

TEST_F(OutputWriterTest, ACancelledWriteStopsBetweenItsKeys) {
    desk.editor.open(QStringLiteral("abcdef"));
    async::TaskScope scope(desk.loop);
    const auto task = scope.spawn(writer.writeText(QStringLiteral("new"), Method::deleteChars, 2, 0));
    desk.loop.advance(75ms);  // deleted, on the pasteboard, not yet pasted
    task.cancel();
    desk.loop.runToEnd();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("abcd"));
    EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("new"));
}

TEST_F(OutputWriterTest, Pictures) {
    const auto write = [this](const std::optional<platform::PasteboardItem>& item,
                              const std::optional<QString>& caption, AutoPaste autoPaste) {
        return runTask(desk.loop, writer.writeImage(item, caption, autoPaste));
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
