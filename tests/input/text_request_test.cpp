// The road of a typed request, from the hotkey to the field, on a desktop of fakes.
#include <gtest/gtest.h>

#include "input/text_request_pipeline.h"
#include "persistence/taught.h"
#include "support/input_desk.h"
#include "support/qt_gtest.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using tavrelon::testing::FakeGenerator;
using tavrelon::testing::InputDesk;
using tavrelon::testing::SimulatedEditor;
using Case = InputState::Case;

class TextRequestTest : public ::testing::Test {
 public:
    InputDesk desk;

    void finish() { desk.loop.runToEnd(); }
    QString asked() const {
        return desk.generator.requests.empty() ? QStringLiteral("<nothing>") : desk.generator.requests.back().input;
    }
    int backspaces() const { return desk.keyPoster.count(keys::keyBackspace, keys::noModifiers); }
};

TEST_F(TextRequestTest, TheAnswerTakesThePlaceOfWhatWasTyped) {
    desk.editor.open(QStringLiteral("你好😀，世界"));
    desk.editor.select(4);
    desk.request(QStringLiteral("hello👨‍👩‍👧"));
    finish();
    EXPECT_EQ(asked(), QStringLiteral("hello👨‍👩‍👧"));
    EXPECT_EQ(backspaces(), 6);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("你好😀ANSWER，世界"));
    EXPECT_EQ(desk.state(), Case::idle);

    ASSERT_EQ(desk.history.entries().size(), 1U);
    const auto& entry = desk.history.entries().front();
    EXPECT_EQ(entry.inputText, QStringLiteral("hello👨‍👩‍👧"));
    EXPECT_EQ(entry.outputText, QStringLiteral("ANSWER"));
    EXPECT_EQ(entry.appName, QStringLiteral("Editor"));
    EXPECT_EQ(entry.windowTitle, QStringLiteral("Untitled"));
    EXPECT_EQ(entry.retryCount, 0);
    EXPECT_EQ(desk.learner.recorded, QStringList{QStringLiteral("hello👨‍👩‍👧")});
    const auto& context = desk.generator.requests.front().context;
    ASSERT_TRUE(context);
    EXPECT_EQ(context->inputBuffer, QStringLiteral("hello👨‍👩‍👧"));
}

TEST_F(TextRequestTest, AHalfComposedWordIsGivenUpAndNotCountedWhereverItStands) {
    // Browsers tell of their fields late.
    for (const auto& [shown, late] :
         {std::pair(QString(), 0ms), std::pair(QStringLiteral("wo"), 0ms), std::pair(QStringLiteral("wo"), 150ms)}) {
        const auto committed = QStringLiteral("你好");
        desk.keyPoster.compositionOpen = true;
        desk.inputSource.active = shown.isEmpty();  // one that is busy may not have told in time
        desk.editor.open(QStringLiteral("before "));
        desk.editor.select(7);
        async::Timer told;
        desk.keyPoster.onPress = [&, typical = desk.keyPoster.onPress](const auto& stroke) {
            if (!stroke.is(keys::keyEscape, keys::noModifiers) || !desk.keyPoster.compositionOpen)
                return typical(stroke);
            desk.keyPoster.compositionOpen = false;
            told = desk.loop.after(late, [&] {
                desk.editor.open(QStringLiteral("before ") + committed);
                desk.editor.select(9);
            });
        };
        desk.request(committed + shown);
        finish();
        EXPECT_EQ(desk.editor.text(), QStringLiteral("before ANSWER"))
            << "shown: " << shown.toStdString() << ", after " << late;
        EXPECT_EQ(desk.keyPoster.count(keys::keyEscape, keys::noModifiers), 1);
        desk.keyPoster.clear();
    }
}

TEST_F(TextRequestTest, EmptyInputEndsWithoutAMessage) {
    desk.change([](auto& settings) { settings.enableLocalLearning = false; });
    desk.editor.open(QString());
    desk.request(QString());
    finish();
    EXPECT_EQ(desk.state(), Case::idle);
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] Empty input detected, skipping processing")));
    desk.editor.select(0, 0);
    desk.request(QStringLiteral("  \n"));
    finish();
    EXPECT_TRUE(desk.generator.requests.empty());
    EXPECT_EQ(desk.machine->lastError(), std::nullopt);
}

TEST_F(TextRequestTest, AFieldThatIsSeenAtOneEndOnlyKeepsWhatStoodInIt) {
    desk.editor.open(QStringLiteral("kept "), SimulatedEditor::Visibility::Opaque);
    desk.toggle();
    desk.editor.open(QStringLiteral("kept "));  // the user clicks into it only now
    desk.type(QStringLiteral("hello"));
    desk.toggle();
    finish();
    EXPECT_EQ(asked(), QStringLiteral("hello"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("kept ANSWER"));
}

TEST_F(TextRequestTest, ALatinRequestInAForeignDocumentIsNeitherHeldUpNorReplaced) {
    desk.editor.open(QStringLiteral("会议纪要 很长"));
    desk.editor.select(5);
    desk.request(QStringLiteral("hello"));
    desk.loop.advance(100ms);
    EXPECT_EQ(asked(), QStringLiteral("hello"));
    finish();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("会议纪要 ANSWER很长"));

    desk.editor.open(QStringLiteral("会议纪要 x"));
    desk.toggle();
    desk.editor.open(QString());  // something else changed too, so who knows what the letters are
    desk.type(QStringLiteral("会议纪要 hello"));
    desk.toggle();
    desk.loop.advance(2s);
    EXPECT_EQ(desk.generator.requests.size(), 1U);
    finish();
    EXPECT_EQ(desk.generator.requests.size(), 2U);
}

TEST_F(TextRequestTest, WhatAnInputMethodMadeOfTheKeysIsRemovedOnlyWhereItWasSeen) {
    desk.inputSource.active = true;
    for (const auto& text : {QStringLiteral("the user's own text"), QStringLiteral("用户的文字")}) {
        desk.editor.open(text);
        desk.editor.select(text.size());
        desk.toggle();
        for (const auto* letter : {"n", "i", "h", "a", "o"})
            desk.keyboard.press(InputDesk::noKey, {}, QString::fromLatin1(letter));
        desk.toggle();
        finish();
        EXPECT_EQ(desk.editor.text(), text + QStringLiteral("ANSWER"));
    }
}

TEST_F(TextRequestTest, WhereTheFieldCanBeEditedTheRequestIsReplacedWithoutAKeyAndTheClipboardKept) {
    desk.accessibility.replacesText = true;
    desk.pasteboard.copyElsewhere(QStringLiteral("precious"));
    desk.editor.open(QStringLiteral("Dear ,"));
    desk.editor.select(5);
    desk.request(QStringLiteral("who? 👍"));
    finish();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("Dear ANSWER,"));
    EXPECT_TRUE(desk.keyPoster.strokes().empty());
    EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("precious"));
}

TEST_F(TextRequestTest, NothingIsRemovedWhereTheRequestDoesNotStandAnyMore) {
    desk.generator.delay = 1s;
    desk.request(QStringLiteral("question"));
    desk.loop.advance(500ms);
    desk.editor.type(QStringLiteral(" and more"));
    finish();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("question and moreANSWER"));
}

TEST_F(TextRequestTest, EscapeAmidTheCopyOfASlowApplicationStillGivesTheClipboardBack) {
    desk.editor.open(QString(), SimulatedEditor::Visibility::Opaque);
    desk.pasteboard.copyElsewhere(QStringLiteral("precious"));
    desk.toggle();
    desk.toggle();
    desk.loop.advance(30ms);
    ASSERT_EQ(desk.state(), Case::processing);
    desk.machine->cancelInput();
    desk.pasteboard.copyElsewhere(QStringLiteral("selected"));  // the copy comes after the cancellation
    finish();
    EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("precious"));
    EXPECT_TRUE(desk.generator.requests.empty());
}

TEST_F(TextRequestTest, AnOpaqueFieldWithoutKeysIsReadThroughTheClipboardWhichSurvives) {
    desk.editor.open(QStringLiteral("fix this please"), SimulatedEditor::Visibility::Opaque);
    desk.editor.select(4, 4);
    const std::vector<platform::PasteboardItem> precious{
        {{{QStringLiteral("image/png"), "pixels"}, {QStringLiteral("text/html"), "<b>x</b>"}}}};
    desk.pasteboard.copyElsewhere(precious);
    desk.generator.script = {FakeGenerator::Failure{QStringLiteral("no")}, FakeGenerator::Failure{QStringLiteral("no")},
                             FakeGenerator::Failure{QStringLiteral("no")}};
    desk.request(QString());
    finish();
    EXPECT_EQ(asked(), QStringLiteral("this"));
    EXPECT_EQ(desk.pasteboard.contents(), precious);
}

TEST_F(TextRequestTest, WhereNobodyTellsKeysAWholeFieldIsNeverTheRequest) {
    desk.keyboard.observer.canObserve = false;
    const auto kept = QStringLiteral("a long letter");
    for (const auto visibility : {SimulatedEditor::Visibility::Opaque, SimulatedEditor::Visibility::Visible}) {
        desk.editor.open(kept, visibility);
        desk.editor.select(kept.size());
        desk.request(QString());  // or what was typed never came into sight
        finish();
        EXPECT_EQ(desk.editor.text(), kept);
        EXPECT_TRUE(desk.generator.requests.empty());
        EXPECT_TRUE(
            desk.machine->lastError().value_or(text::LocalizedText()).english.contains(QStringLiteral("prompt box")));
    }
    desk.editor.select(2, 4);
    desk.request(QString());
    finish();
    EXPECT_EQ(asked(), QStringLiteral("long")) << "a selection is one all the same";
}

TEST_F(TextRequestTest, WhereNobodyTellsKeysAFieldThatIsLateIsWaitedFor) {
    desk.keyboard.observer.canObserve = false;
    desk.editor.open(QStringLiteral("kept "));
    desk.editor.select(5);
    desk.toggle();
    desk.toggle();
    for (const auto* piece : {"what is ", "42?"}) {
        desk.loop.advance(30ms);
        desk.editor.type(QString::fromLatin1(piece));
    }
    finish();
    EXPECT_EQ(asked(), QStringLiteral("what is 42?"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("kept ANSWER"));
}

TEST_F(TextRequestTest, AFailureIsTriedThreeTimesAndLeavesTheFieldAlone) {
    desk.generator.script = {FakeGenerator::Failure{QStringLiteral("a")}, FakeGenerator::Failure{QStringLiteral("b")},
                             FakeGenerator::Failure{QStringLiteral("c")}};
    desk.request(QStringLiteral("question"));
    const auto start = desk.loop.now();
    while (desk.state() == Case::processing)
        desk.loop.advance(1ms);
    EXPECT_EQ(desk.loop.now() - start, 3 * desk.generator.delay + 350ms + 700ms);
    finish();
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Generation failed: c")));
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] Processing error: Generation failed: c")));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("question"));
    EXPECT_TRUE(desk.history.entries().empty());

    desk.generator.script = {FakeGenerator::Failure{QStringLiteral("a")}};
    desk.editor.open(QString());
    desk.request(QStringLiteral("again"));
    finish();
    ASSERT_EQ(desk.history.entries().size(), 1U);
    EXPECT_EQ(desk.history.entries().front().retryCount, 1);
}

TEST_F(TextRequestTest, EmptyInputOfTheModelIsNotTriedAgain) {
    desk.generator.script = {generation::ProcessingError::emptyInput()};
    desk.request(QStringLiteral("question"));
    finish();
    EXPECT_EQ(desk.generator.requests.size(), 1U);
    EXPECT_EQ(desk.state(), Case::idle);
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] Empty input; stopping without error UI")));
}

TEST_F(TextRequestTest, AnAnswerThatComesWhileAnotherWindowIsInFrontIsLeftOnTheClipboard) {
    desk.generator.delay = 5s;
    desk.request(QStringLiteral("question"));
    desk.loop.advance(1s);
    desk.workspace.focusOwnWindow();
    desk.loop.advance(5s);
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Answer is on the clipboard")));
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] Error processing: Answer is on the clipboard")));
    EXPECT_EQ(desk.pasteboard.text(), QStringLiteral("ANSWER"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("question"));
    EXPECT_TRUE(desk.keyPoster.strokes().empty());
    ASSERT_EQ(desk.history.entries().size(), 1U) << "the record is as ever";
    EXPECT_EQ(desk.history.entries().front().outputText, QStringLiteral("ANSWER"));
}

TEST_F(TextRequestTest, AnAnswerToThePromptBoxIsForTheWindowItWasOpenedOver) {
    const auto before = desk.workspace.frontmostApplication();
    desk.workspace.focusOwnWindow();  // the focus has not come back yet
    desk.machine->submitFloatingInput(QStringLiteral("hello"), before);
    desk.workspace.activate(*before);
    finish();
    EXPECT_EQ(desk.editor.text(), QStringLiteral("ANSWER"));
    desk.workspace.focusOwnWindow();
    desk.machine->submitFloatingInput(QStringLiteral("hello"), before);
    desk.loop.advance(1s);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("ANSWER")) << "it never came back";
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Answer is on the clipboard")));
}

TEST_F(TextRequestTest, TheRecordHoldsNoControlCharacters) {
    desk.generator.script = {generation::GenerationResult{.text = QStringLiteral("a\u001b]0;x\u0007\n")}};
    desk.workspace.focus(*desk.workspace.frontmostApplication(), QStringLiteral("ignored"));
    desk.accessibility.windowTitle = QStringLiteral("one\nSelected Text: \u202etwo");
    desk.request(QStringLiteral("question"));
    finish();
    const auto& entry = desk.history.entries().front();
    EXPECT_EQ(entry.outputText, QStringLiteral("a]0;x\n"));
    EXPECT_EQ(entry.windowTitle, QStringLiteral("one Selected Text: two"));
}

TEST_F(TextRequestTest, SettingsReachTheRequest) {
    desk.change([](auto& settings) {
        settings.adaptiveSystemPrompt = QStringLiteral(" voice\n");
        settings.cloneLanguageStyle = QStringLiteral(" style ");
        settings.cloneSystemPrompt = QStringLiteral("  ");
        settings.enableImagePromptEnhancement = false;
    });
    desk.request(QStringLiteral("one"));
    finish();
    const auto& first = desk.generator.requests.front();
    EXPECT_EQ(first.voice.adaptivePrompt, QStringLiteral("voice"));
    EXPECT_EQ(first.voice.userStyle, std::nullopt) << "the learnt voice displaces the style profile";
    EXPECT_EQ(first.voice.languageStyle, QStringLiteral("style"));
    EXPECT_EQ(first.voice.cloneSystemPrompt, std::nullopt);
    EXPECT_FALSE(first.enhanceImagePrompts);

    desk.change([](auto& settings) {
        persistence::adoptTaught(settings);
        settings.enableNvidiaLocal = true;
    });
    desk.request(QStringLiteral("two"));
    finish();
    const auto& second = desk.generator.requests.back().voice;
    EXPECT_FALSE(second.adaptivePrompt || second.languageStyle) << "taught by another provider";
    EXPECT_TRUE(second.userStyle);
}

TEST_F(TextRequestTest, TakesTheLettersWhenNothingIsCommitted) {
    desk.inputSource.active = true;
    desk.request(QStringLiteral("nihao"));
    const auto start = desk.loop.now();
    while (desk.generator.requests.empty())
        desk.loop.advance(1ms);
    EXPECT_EQ(desk.loop.now() - start, 2250ms);
    finish();
    EXPECT_EQ(asked(), QStringLiteral("nihao"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("ANSWER"));
    EXPECT_TRUE(desk.learner.recorded.isEmpty()) << "raw letters teach nothing";
}

TEST_F(TextRequestTest, OfAnOpaqueFieldAnInputMethodsRequestIsTheWholeOnlyWhereTheKeysMayHaveMadeIt) {
    desk.inputSource.active = true;
    const auto compose = [&](const QString& before) {
        desk.editor.open(before, SimulatedEditor::Visibility::Opaque);
        desk.editor.select(before.size());
        desk.toggle();
        for (const auto letter : QStringLiteral("nihao "))
            desk.keyboard.press(InputDesk::noKey, {}, letter);
        desk.editor.type(QStringLiteral("你好"));
        desk.toggle();
        finish();
    };
    compose(QString());
    EXPECT_EQ(asked(), QStringLiteral("你好"));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("ANSWER"));
    compose(QStringLiteral("a long letter "));
    EXPECT_EQ(desk.generator.requests.size(), 1U);
    EXPECT_EQ(desk.editor.text(), QStringLiteral("a long letter 你好"));
    EXPECT_EQ(desk.keyPoster.count(input::RequestDiscovery::keyRight, keys::noModifiers), 1)
        << "it does not stay selected";
    EXPECT_TRUE(desk.machine->lastError().value_or(QString()).english.contains(QStringLiteral("prompt box")));
}

TEST_F(TextRequestTest, FallsBackToTheTextNearTheCaretWhenNothingOfTheKeysIsSeen) {
    desk.inputSource.active = true;
    desk.editor.open(QStringLiteral("你好 "));
    desk.toggle();
    desk.keyboard.press(InputDesk::noKey, {}, QStringLiteral("a"));
    desk.toggle();
    finish();
    EXPECT_EQ(asked(), QStringLiteral("你好 "));
}

class ImageRequestTest : public TextRequestTest {
 public:
    ImageRequestTest() { desk.generator.script = {generation::GenerationResult{.imageData = "picture of a cat"}}; }
};

TEST_F(ImageRequestTest, APictureReplacesWhatWasTypedAndIsKept) {
    desk.request(QStringLiteral("draw a cat"));
    finish();
    EXPECT_EQ(backspaces(), 10);
    EXPECT_EQ(desk.keyPoster.count(keys::keyV, keys::commandFlag), 1);
    ASSERT_EQ(desk.pasteboard.contents().size(), 1U);
    EXPECT_EQ(desk.pasteboard.contents().front().dataByType.front().second, "PNG of picture of a cat");
    ASSERT_EQ(desk.history.entries().size(), 1U);
    const auto& entry = desk.history.entries().front();
    EXPECT_EQ(entry.outputText, QStringLiteral("图片已复制到剪贴板"));
    ASSERT_TRUE(entry.outputImagePath);
    EXPECT_EQ(desk.fileSystem.read(*desk.history.resolvedImagePath(*entry.outputImagePath)), "PNG of picture of a cat")
        << "only what was decoded and encoded anew is kept";
}

TEST_F(ImageRequestTest, APictureOverASelectionSendsNoBackspace) {
    desk.editor.open(QStringLiteral("a cat"));
    desk.editor.select(0, 5);
    desk.request(QString());
    finish();
    EXPECT_EQ(backspaces(), 0);
    EXPECT_EQ(desk.keyPoster.count(keys::keyV, keys::commandFlag), 1);
}

TEST_F(ImageRequestTest, BytesThatAreNoPictureAreAnErrorAndChangeNothing) {
    desk.generator.script = {generation::GenerationResult{.imageData = "<html>"}};
    desk.request(QStringLiteral("draw a cat"));
    finish();
    EXPECT_EQ(desk.state(), InputState::error(QStringLiteral("Invalid image data")));
    EXPECT_TRUE(desk.log.contains(QStringLiteral("[StateMachine] Error processing: Invalid image data")));
    EXPECT_EQ(desk.editor.text(), QStringLiteral("draw a cat"));
    EXPECT_TRUE(desk.history.entries().empty());
}

}  // namespace tavrelon::input
