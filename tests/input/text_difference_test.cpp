#include "input/text_difference.h"

#include <gtest/gtest.h>

#include <random>

#include "input/request_text.h"
#include "support/qt_gtest.h"

namespace tavrelon::input {

using Method = scenes::ReplacementStrategy::Method;

namespace {

AccessibilityTextSnapshot snapshot(const QString& value, std::optional<text::Utf16Range> range = std::nullopt) {
    return {value, range};
}

}  // namespace

TEST(TextDifference, FindsTheOneChangedStretch) {
    const auto difference = [](const char16_t* before, const char16_t* after) {
        const auto found = textDifference(QString::fromUtf16(before), QString::fromUtf16(after));
        return std::pair(found.inserted, static_cast<int>(found.deleted));
    };
    EXPECT_EQ(difference(u"", u"hello"), (std::pair(QStringLiteral("hello"), 0)));
    EXPECT_EQ(difference(u"ab", u"aXb"), (std::pair(QStringLiteral("X"), 0)));
    EXPECT_EQ(difference(u"aa", u"aaa"), (std::pair(QStringLiteral("a"), 0)));  // prefix and suffix never overlap
    EXPECT_EQ(difference(u"abc", u"ac"), (std::pair(QString(), 1)));
    EXPECT_EQ(difference(u"你😀好", u"你😀们好"), (std::pair(QStringLiteral("们"), 0)));
    // A joined emoji is one character: half of it is no common start.
    EXPECT_EQ(difference(u"👨‍👩‍👧", u"👨‍👩‍👦"),
              (std::pair(QStringLiteral("👨‍👩‍👦"), 1)));
    EXPECT_EQ(difference(u"same", u"same"), (std::pair(QString(), 0)));
}

TEST(TextDifference, ApplyingItGivesTheNewText) {
    std::mt19937 random(7);  // NOLINT(cert-msc51-cpp): the same texts in every run
    const std::array<QString, 5> alphabet{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("你"),
                                          QStringLiteral("😀"), QStringLiteral("\n")};
    const auto text = [&] {
        QString made;
        for (auto length = random() % 12; length > 0; --length)
            made += alphabet.at(random() % alphabet.size());
        return made;
    };
    for (int round = 0; round < 500; ++round) {
        const auto before = text();
        const auto after = text();
        const auto caret = static_cast<qint64>(random() % 14);
        const auto selected = static_cast<qint64>(random() % 4);
        for (const auto& anchors : {TypingAnchors(), TypingAnchors{text::Utf16Range{caret, selected}, caret + 2}}) {
            const auto difference = textDifference(before, after, anchors);
            const auto insertedCount = text::characterCount(difference.inserted);
            EXPECT_EQ(text::characterCount(after) - insertedCount, text::characterCount(before) - difference.deleted);
            EXPECT_EQ(after.mid(difference.at, difference.inserted.size()), difference.inserted);
            const auto tail = after.size() - difference.at - difference.inserted.size();
            EXPECT_EQ(before.first(difference.at), after.first(difference.at));
            EXPECT_EQ(before.last(tail), after.last(tail));
        }
    }
}

TEST(TextDifference, WhatWasTypedAtTheCaretIsFoundInWholeHoweverLongTheField) {
    const auto typed = [](const QString& before, text::Utf16Range selection, const QString& request) {
        auto after = before;
        after.replace(selection.location, selection.length, request);
        return textDifference(before, after, {selection, selection.location + request.size()});
    };
    const auto the = typed(QStringLiteral("the end"), {0, 0}, QStringLiteral("translate: "));
    EXPECT_EQ(the, (TextDifference{QStringLiteral("translate: "), 0, 0}));
    EXPECT_EQ(typed(QStringLiteral("more\nlines"), {4, 0}, QStringLiteral("\n42?\n")),
              (TextDifference{QStringLiteral("\n42?\n"), 0, 4}));
    EXPECT_EQ(typed(QStringLiteral("a bad word"), {2, 3}, QStringLiteral("bad2")),
              (TextDifference{QStringLiteral("bad2"), 3, 2}));
    const auto book = QStringLiteral("会议纪要😀 the same line\n").repeated(2000) + QString(9000, u'a');
    const qint64 places[] = {0, 30000, book.size() - 8500, book.size()};
    for (const auto place : places)
        EXPECT_EQ(typed(book, {place, 0}, QStringLiteral("ask 请 a")),
                  (TextDifference{QStringLiteral("ask 请 a"), 0, place}))
            << place;
    // A caret that was moved meanwhile does not matter, and one that stands elsewhere now neither.
    const auto after = QString(book).insert(30000, QStringLiteral("why?"));
    EXPECT_EQ(textDifference(book, after, {text::Utf16Range{5, 0}, 30004}).inserted, QStringLiteral("why?"));
    EXPECT_EQ(textDifference(book, after, {text::Utf16Range{30000, 0}, 7}).inserted, QStringLiteral("why?"));
}

TEST(TextDifference, SnapshotsOfTwoFieldsAreNotCompared) {
    const platform::AXElement one{platform::AXElement::Kind::Object, 0, QStringLiteral(":1.1"), QStringLiteral("/1")};
    auto other = one;
    other.path = QStringLiteral("/2");
    const AccessibilityTextSnapshot before{QStringLiteral("Dear"), text::Utf16Range{4, 0}, one};
    const AccessibilityTextSnapshot after{QStringLiteral("Dear all"), text::Utf16Range{8, 0}, one};
    EXPECT_EQ(deriveInputText(before, after), QStringLiteral(" all"));
    auto elsewhere = after;
    elsewhere.element = other;
    EXPECT_EQ(deriveInputText(before, elsewhere), std::nullopt);
    EXPECT_EQ(deriveRequestText(elsewhere, std::nullopt, before), std::nullopt);
    EXPECT_EQ(deriveInputText(std::nullopt, snapshot(QString(20001, u'a'))), std::nullopt) << "nobody means a book";
}

TEST(CaretWindow, HoldsTheCaretWithinTheText) {
    const auto text = QStringLiteral("0123456789");
    EXPECT_EQ(caretWindow(text, std::nullopt, 3), QStringLiteral("789"));
    EXPECT_EQ(caretWindow(text, text::Utf16Range{4, 1}, 2), QStringLiteral("3456"));
    EXPECT_EQ(caretWindow(text, text::Utf16Range{4, -9}, 1), QStringLiteral("34"));
    EXPECT_EQ(caretWindow(text, text::Utf16Range{INT64_MAX, INT64_MAX}, 1), QStringLiteral("9"));
    EXPECT_EQ(caretWindow(text, text::Utf16Range{-5, 0}, INT64_MAX), text);
    EXPECT_EQ(caretWindow(text, std::nullopt, 0), std::nullopt);
    EXPECT_EQ(caretWindow(QString(), std::nullopt, 5), std::nullopt);
}

TEST(RequestText, InsertionBeatsSelectionBeatsRange) {
    const auto initial = snapshot(QStringLiteral("Hello "));
    const auto typed = snapshot(QStringLiteral("Hello world "), text::Utf16Range{0, 5});
    EXPECT_EQ(deriveRequestText(typed, QStringLiteral("chosen"), initial),
              (RequestText{QStringLiteral("world "), 6, true}));
    EXPECT_EQ(deriveRequestText(typed, QStringLiteral(" chosen\n"), typed),
              (RequestText{QStringLiteral("chosen"), std::nullopt}));
    EXPECT_EQ(deriveRequestText(typed, QStringLiteral(" \n"), std::nullopt),
              (RequestText{QStringLiteral("Hello"), std::nullopt}));
    EXPECT_EQ(deriveRequestText(initial, std::nullopt, std::nullopt), std::nullopt);

    EXPECT_EQ(deriveInputText(initial, typed), QStringLiteral("world "));
    EXPECT_EQ(deriveInputText(std::nullopt, typed), QStringLiteral("Hello"));
    EXPECT_EQ(deriveInputText(std::nullopt, snapshot(QStringLiteral(" all "))), QStringLiteral(" all "));
    EXPECT_EQ(deriveInputText(initial, std::nullopt), std::nullopt);
    EXPECT_EQ(deriveInputText(std::nullopt, snapshot(QStringLiteral(" \n"))), std::nullopt);
}

TEST(RequestText, StrategyAndLearning) {
    const auto none = std::optional<QString>();
    EXPECT_EQ(makeReplacementStrategy(QStringLiteral("abc"), QStringLiteral("s"), 2),
              (scenes::ReplacementStrategy{Method::replaceSelection, std::nullopt}));
    EXPECT_EQ(makeReplacementStrategy(QStringLiteral("abc"), QString(), 2),
              (scenes::ReplacementStrategy{Method::deleteChars, 2}));
    EXPECT_EQ(makeReplacementStrategy(QStringLiteral("a😀c"), none, std::nullopt),
              (scenes::ReplacementStrategy{Method::deleteChars, 3}));
    EXPECT_FALSE(shouldRecordInput(QStringLiteral(" \n"), false));
    EXPECT_FALSE(shouldRecordInput(QStringLiteral("nihao"), true));
    EXPECT_TRUE(shouldRecordInput(QStringLiteral("nihao"), false));
    EXPECT_TRUE(shouldRecordInput(QStringLiteral("你好 ok"), true));
}

}  // namespace tavrelon::input
