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
        return textDifference(QString::fromUtf16(before), QString::fromUtf16(after), 100);
    };
    EXPECT_EQ(difference(u"", u"hello"), (TextDifference{QStringLiteral("hello"), 0}));
    EXPECT_EQ(difference(u"ab", u"aXb"), (TextDifference{QStringLiteral("X"), 0}));
    EXPECT_EQ(difference(u"aa", u"aaa"), (TextDifference{QStringLiteral("a"), 0}));  // prefix and suffix never overlap
    EXPECT_EQ(difference(u"abc", u"ac"), (TextDifference{QString(), 1}));
    EXPECT_EQ(difference(u"你😀好", u"你😀们好"), (TextDifference{QStringLiteral("们"), 0}));
    // A joined emoji is one character: half of it is no common start.
    EXPECT_EQ(difference(u"👨‍👩‍👧", u"👨‍👩‍👦"),
              (TextDifference{QStringLiteral("👨‍👩‍👦"), 1}));
    EXPECT_EQ(difference(u"same", u"same"), (TextDifference{QString(), 0}));
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
        const auto difference = textDifference(before, after, 100);
        ASSERT_TRUE(difference);
        const auto insertedCount = text::characterCount(difference->inserted);
        EXPECT_EQ(text::characterCount(after) - insertedCount, text::characterCount(before) - difference->deleted);
        EXPECT_TRUE(after.contains(difference->inserted));
    }
}

TEST(TextDifference, StopsAtItsLimit) {
    const QString exact(20000, u'a');
    EXPECT_TRUE(textDifference(exact, exact.first(19999), 20000));
    EXPECT_FALSE(textDifference(exact + u'a', exact, 20000));
    EXPECT_FALSE(textDifference(exact, exact + u'a', 20000));
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
    EXPECT_EQ(deriveRequestText(typed, QStringLiteral("chosen"), initial), (RequestText{QStringLiteral("world "), 6}));
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
