#include <gtest/gtest.h>

#include "support/qt_gtest.h"
#include "text/characters.h"
#include "text/foreign_text.h"
#include "text/json.h"
#include "text/tolerant_json.h"

namespace tavrelon::text {

TEST(Characters, CountsWhatAPersonWouldCount) {
    EXPECT_EQ(characterCount(u""), 0);
    EXPECT_EQ(characterCount(u"hello"), 5);
    EXPECT_EQ(characterCount(u"a\r\nb"), 3);
    EXPECT_EQ(characterCount(u"你好😀"), 3);
    EXPECT_EQ(characterCount(u"👨‍👩‍👧🇩🇪e\u0301"), 3);
    EXPECT_EQ(characterCount(u"🇩🇪🇫🇷🇩"), 3);
    EXPECT_EQ(characterCount(u"한글"), 2);
    EXPECT_EQ(withoutLastCharacter(QStringLiteral("a👨‍👩‍👧")), QStringLiteral("a"));
    EXPECT_EQ(withoutLastCharacter(QString()), QString());
    EXPECT_EQ(prefixOfCharacters(QStringLiteral("😀😀😀"), 2), QStringLiteral("😀😀"));
    EXPECT_EQ(prefixOfCharacters(QStringLiteral("😀"), 2), QStringLiteral("😀"));
}

TEST(Characters, RangesThatSplitAPairOrLeaveTheTextGiveNothing) {
    const auto text = QStringLiteral("a😀b");
    EXPECT_EQ(substring(text, {1, 2}), QStringLiteral("😀"));
    EXPECT_EQ(substring(text, {4, 0}), QString());
    EXPECT_EQ(substring(text, {2, 1}), std::nullopt);
    EXPECT_EQ(substring(text, {0, 2}), std::nullopt);
    EXPECT_EQ(substring(text, {3, 2}), std::nullopt);
    EXPECT_EQ(substring(text, {-1, 1}), std::nullopt);
    EXPECT_EQ(substring(text, {1, INT64_MAX}), std::nullopt);
}

TEST(Characters, BlankAndAsciiTests) {
    EXPECT_TRUE(isBlank(u" \t\r\n\u3000"));
    EXPECT_FALSE(isBlank(u" x "));
    EXPECT_EQ(trimmedOrAbsent(QStringLiteral(" \n")), std::nullopt);
    EXPECT_TRUE(isASCIIOnly(u""));
    EXPECT_FALSE(isASCIIOnly(u"caf\u00e9"));
    EXPECT_TRUE(containsIgnoringCase(QStringLiteral("RE: Ärger"), QStringLiteral("re: äRGER")));
}

TEST(Json, TypesAndRangesAreChecked) {
    EXPECT_EQ(integerFrom(parseJson("3.0")), 3);
    EXPECT_EQ(integerFrom(parseJson("-9223372036854775808")), INT64_MIN);
    EXPECT_THROW(integerFrom(parseJson("9223372036854775808")), JsonError);
    EXPECT_THROW(integerFrom(parseJson("3.5")), JsonError);
    EXPECT_THROW(boolFrom(parseJson("1")), JsonError);
    EXPECT_THROW(parseJson("\"\xff\""), JsonError);
    EXPECT_THROW(parseJson(""), JsonError);
    EXPECT_EQ(optionalString(parseJson(R"({"a":null})"), "a"), std::nullopt);
    EXPECT_EQ(stringFrom(parseJson(R"("你\u0000好")")), QString::fromUtf16(u"你\0好", 3));
}

TEST(Json, WhatIsTooLargeIsNotOpened) {
    const auto list = [](qsizetype count) { return "[" + QByteArray("0,").repeated(count - 1) + "0]"; };
    EXPECT_EQ(parseJson(list(900'000)).size(), 900'000U);
    EXPECT_THROW(parseJson(list(1'100'000)), JsonError);
    const auto object = [](int count) {
        QByteArray keys;
        for (int key = 0; key < count; ++key)
            keys += (key ? ",\"" : "\"") + QByteArray::number(key) + "\":{}";
        return "[{" + keys + "},{}]";
    };
    EXPECT_NO_THROW(parseJson(object(1'000)));
    EXPECT_THROW(parseJson(object(1'001)), JsonError);
    EXPECT_THROW(parseJson(QByteArray(65LL * 1024 * 1024, ' ')), JsonError);
    EXPECT_EQ(parseJSONObject(QString::fromLatin1("{\"a\":" + list(1'100'000) + "}")), std::nullopt);
}

TEST(ForeignText, WhatOthersChoseLosesWhatSteersScreensAndPrompts) {
    using namespace Qt::StringLiterals;
    EXPECT_EQ(oneLine(u"a\r\nSelected Text: b\u2028c\td\u001b[31m\u202ee\u200b\u0085f\u009bg"_s, 300),
              u"a  Selected Text: b c d[31me fg"_s);
    EXPECT_EQ(oneLine(u"👨‍👩‍👧é"_s.repeated(400), 3), u"👨👩👧"_s);
    EXPECT_EQ(oneLine(u"e"_s + QString(1 << 20, QChar(0x0301)), 2).size(), 16) << "marks are bounded too";

    const std::pair<QString, QString> answers[] = {
        {u"one\r\n\ttwo\n"_s, u"one\n\ttwo\n"_s},
        {u"x\u001b[201~\u0000\u0007\u007f\u0080\u009by"_s, u"x[201~y"_s},
        {u"\u202eexe\u202c \u2067ok\u2069"_s, u"\u202eexe\u202c \u2067ok\u2069"_s},
        {u"\u202egnp\nnext"_s, u"gnp\nnext"_s},
        {u"a\u202c b\u2069 \u2066c\u202ed\u2069"_s, u"a b \u2066cd\u2069"_s},
    };
    for (const auto& [answer, writable] : answers)
        EXPECT_EQ(writableAnswer(answer), writable);
}

TEST(TolerantJson, FindsTheObjectInAReply) {
    const auto keyIn = [](const char16_t* reply) {
        const auto object = parseJSONObject(QString::fromUtf16(reply));
        return object ? optionalString(*object, "k") : std::nullopt;
    };
    EXPECT_EQ(keyIn(uR"({"k":"a"})"), QStringLiteral("a"));
    EXPECT_EQ(keyIn(u"Sure!\n```json\n{\"k\":\"b\"}\n```\nand {\"k\":\"c\"}"), QStringLiteral("b"));
    EXPECT_EQ(keyIn(u"Here: {\"k\":\"c\"} done"), QStringLiteral("c"));
    EXPECT_EQ(keyIn(uR"("{\"k\":\"d\"}")"), QStringLiteral("d"));
    EXPECT_EQ(keyIn(u"``` {\"k\":\"e\"}"), QStringLiteral("e"));  // no closing fence: the braces decide
    EXPECT_EQ(keyIn(u"} {"), std::nullopt);
    EXPECT_EQ(keyIn(u"[1]"), std::nullopt);
    EXPECT_EQ(keyIn(u""), std::nullopt);
}

}  // namespace tavrelon::text
