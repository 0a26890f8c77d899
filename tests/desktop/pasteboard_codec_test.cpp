#include <gtest/gtest.h>

#include "desktop/x11/x11_selection_codec.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

namespace {

const QString utf8String = QStringLiteral("UTF8_STRING");
const QString latin1 = QStringLiteral("STRING");
const QString plain = QStringLiteral("text/plain");
const QString chinese = QStringLiteral("你好 👋");

platform::PasteboardItem item(std::vector<std::pair<QString, QByteArray>> dataByType) {
    return {.dataByType = std::move(dataByType)};
}

TEST(SelectionText, IsDecodedByItsType) {
    EXPECT_EQ(decodeText(utf8String, "caf\xc3\xa9"), QStringLiteral("café"));
    EXPECT_EQ(decodeText(QStringLiteral("text/plain;charset=UTF-8"), "caf\xc3\xa9"), QStringLiteral("café"));
    EXPECT_EQ(decodeText(latin1, "caf\xc3\xa9"), QStringLiteral("cafÃ©"));
    EXPECT_EQ(decodeText(plain, "caf\xc3\xa9"), QStringLiteral("café"));
    EXPECT_EQ(decodeText(plain, "caf\xe9"), QStringLiteral("café")) << "not UTF-8, so it is the older one";
    EXPECT_EQ(decodeText(utf8String, QByteArray("a\0b\0\0", 5)), QStringLiteral("a") + QChar(0) + u'b');
    EXPECT_EQ(decodeText(utf8String, "a\xff\xc3z"), QStringLiteral("a\uFFFD\uFFFDz")) << "no text, but no harm";
    EXPECT_EQ(decodeText(utf8String, {}), QString());
    EXPECT_EQ(decodeText(QStringLiteral("image/png"), "x"), std::nullopt);
    EXPECT_EQ(decodeText(QStringLiteral("COMPOUND_TEXT"), "x"), std::nullopt);
}

TEST(SelectionText, IsEncodedForEachTargetOrNotAtAll) {
    EXPECT_EQ(encodeText(plain, chinese), (SelectionData{.type = plain, .format = 8, .bytes = chinese.toUtf8()}));
    EXPECT_EQ(encodeText(QStringLiteral("TEXT"), chinese)->type, utf8String);
    EXPECT_EQ(encodeText(latin1, QStringLiteral("é\t\r\n"))->bytes, QByteArray("\xe9\t\r\n"));
    EXPECT_EQ(encodeText(latin1, QStringLiteral("€")), std::nullopt);
    EXPECT_EQ(encodeText(QStringLiteral("text/html"), chinese), std::nullopt);
}

TEST(SelectionContent, OffersItsTypesFirstAndThenWhatCanBeMadeOfItsText) {
    const SelectionContent content(item({{QStringLiteral("text/html"), "<p>"}, {plain, chinese.toUtf8()}}));
    EXPECT_EQ(content.text(), chinese);
    EXPECT_EQ(content.targets(),
              (std::vector<QString>{QStringLiteral("text/html"), plain, utf8String,
                                    QStringLiteral("text/plain;charset=utf-8"), QStringLiteral("TEXT")}));
    EXPECT_EQ(content.dataFor(utf8String)->bytes, chinese.toUtf8());
    EXPECT_EQ(content.dataFor(latin1), std::nullopt);

    const SelectionContent picture(item({{QStringLiteral("image/png"), "p"}}));
    EXPECT_EQ(picture.targets(), std::vector<QString>{QStringLiteral("image/png")});
    EXPECT_EQ(picture.dataFor(utf8String), std::nullopt);
    EXPECT_TRUE(SelectionContent().targets().empty());
}

TEST(SelectionContent, KeepsTheFormInWhichATargetWasReadUnlessTheBytesNoLongerFit) {
    const QString color = QStringLiteral("application/x-color");
    const SelectionForms forms{{color, {.type = QStringLiteral("INTEGER"), .format = 16}}};
    EXPECT_EQ(SelectionContent(item({{color, "1234"}}), forms).dataFor(color),
              (SelectionData{.type = QStringLiteral("INTEGER"), .format = 16, .bytes = "1234"}));
    EXPECT_EQ(SelectionContent(item({{color, "123"}}), forms).dataFor(color)->format, 8);
}

TEST(IncrementSource, GivesWholeUnitsAndEndsWithAnEmptyIncrement) {
    IncrementSource source({.type = utf8String, .format = 8, .bytes = "abcdefg"});
    EXPECT_EQ(source.next(3), "abc");
    EXPECT_EQ(source.next(3), "def");
    EXPECT_EQ(source.next(3), "g");
    EXPECT_FALSE(source.ended());
    EXPECT_EQ(source.next(3), "");
    EXPECT_TRUE(source.ended());

    IncrementSource words({.type = utf8String, .format = 32, .bytes = "aaaabbbb"});
    EXPECT_EQ(words.next(7), "aaaa");
    EXPECT_EQ(words.next(7), "bbbb");
    EXPECT_EQ(words.next(7), "");
}

TEST(Multiple, ReadsPairsAndLeavesOutAnOddAtom) {
    const auto pairs = decodeMultiple({1, 10, 2, 20, 3});
    EXPECT_EQ(pairs, (std::vector<MultiplePair>{{.target = 1, .property = 10}, {.target = 2, .property = 20}}));
    EXPECT_EQ(encodeMultiple(pairs), (std::vector<std::uint32_t>{1, 10, 2, 20}));
    EXPECT_TRUE(decodeMultiple({}).empty());
}

TEST(MetaTargets, AreNoContent) {
    for (const auto* name : {"TARGETS", "MULTIPLE", "INSERT_SELECTION", "INSERT_ANYTHING", "GTK_TEXT_BUFFER_CONTENTS"})
        EXPECT_TRUE(isMetaTarget(QString::fromLatin1(name))) << name;
    for (const auto* name : {"UTF8_STRING", "TEXT", "image/png", "x-special/gnome-copied-files", "COMPOUND_TEXT"})
        EXPECT_FALSE(isMetaTarget(QString::fromLatin1(name))) << name;
}

}  // namespace

}  // namespace tavrelon::desktop
