#include "persistence/style_profile.h"

#include <gtest/gtest.h>

#include <QStringList>

#include "support/qt_gtest.h"
#include "text/scripts.h"

namespace tavrelon::persistence {

namespace {

/// The profile of the inputs, newest first, as "length language tone emoji" and " list" if there is such a line.
QString profile(const QStringList& inputs, qint64 limit = 100) {
    std::vector<HistoryEntry> entries;
    for (const auto& input : inputs)
        entries.push_back({.inputText = input, .outputText = QStringLiteral("您好 哈哈 😀😀😀\n- x")});
    auto words = userStyleProfile(entries, limit).value_or(QStringLiteral("absent"));
    for (const char* label : {"Typical length: ", "Language: ", "Tone: ", "Emoji: "})
        words.remove(QLatin1StringView(label));
    words.replace(QLatin1StringView("\nFormatting: uses bullets for lists."), QLatin1StringView(" list"));
    return words.remove(u'.').replace(u'\n', u' ');
}

QString letters(int count) {
    return QStringLiteral("x").repeated(count);
}

}  // namespace

TEST(StyleProfile, IsAFewLinesOfEnglish) {
    const std::vector<HistoryEntry> entries{{.inputText = QStringLiteral("您好,列表:\n- 一")}};
    EXPECT_EQ(userStyleProfile(entries, 1),
              QStringLiteral("Typical length: short.\nLanguage: zh.\nTone: formal.\nEmoji: none.\n"
                             "Formatting: uses bullets for lists."));
}

TEST(StyleProfile, LooksAtTheNewestInputsThatAreNotBlank) {
    EXPECT_EQ(profile({}), QStringLiteral("absent"));
    EXPECT_EQ(profile({QStringLiteral(" \n\t"), QString()}), QStringLiteral("absent"));
    EXPECT_EQ(profile({QStringLiteral("hello")}, 0), QStringLiteral("absent"));
    EXPECT_EQ(profile({QStringLiteral(" "), QStringLiteral("hello"), QStringLiteral("您好")}, 1),
              QStringLiteral("short en neutral none"));
}

TEST(StyleProfile, MeasuresTheAverageOfUntrimmedCharacters) {
    EXPECT_EQ(profile({letters(59)}), QStringLiteral("short en neutral none"));
    EXPECT_EQ(profile({letters(60)}), QStringLiteral("medium en neutral none"));
    EXPECT_EQ(profile({letters(58) + QStringLiteral(" \n")}), QStringLiteral("medium en neutral none"));
    EXPECT_EQ(profile({letters(179)}), QStringLiteral("medium en neutral none"));
    EXPECT_EQ(profile({letters(180)}), QStringLiteral("long en neutral none"));
    EXPECT_EQ(profile({letters(60), letters(59)}), QStringLiteral("short en neutral none"));  // 59.5
    EXPECT_EQ(profile({QStringLiteral("é").repeated(40)}), QStringLiteral("short mixed neutral none"));
}

TEST(StyleProfile, WeighsScripts) {
    EXPECT_EQ(profile({QStringLiteral("今天天气很好啊吧"), QStringLiteral("ok")}),
              QStringLiteral("short zh neutral none"));
    EXPECT_EQ(profile({QStringLiteral("好ab")}), QStringLiteral("short mixed neutral none"));
    EXPECT_EQ(profile({QStringLiteral("好abc")}), QStringLiteral("short en neutral none"));
    EXPECT_EQ(profile({QStringLiteral("好好好a")}), QStringLiteral("short zh neutral none"));
    EXPECT_EQ(profile({QStringLiteral("123 ünd")}), QStringLiteral("short en neutral none"));
    EXPECT_EQ(profile({QStringLiteral("カナ 123")}), QStringLiteral("short mixed neutral none"));
    const auto kinds = [](char32_t scalar) { return std::tuple(text::isCJK(scalar), text::isEmoji(scalar)); };
    for (const char32_t cjk : {0x4E00U, 0x9FFFU, 0x3400U, 0x4DBFU})
        EXPECT_EQ(kinds(cjk), std::tuple(true, false)) << std::hex << static_cast<unsigned>(cjk);
    for (const char32_t emoji : {0x1F300U, 0x1FAFFU, 0x2600U, 0x27BFU})
        EXPECT_EQ(kinds(emoji), std::tuple(false, true)) << std::hex << static_cast<unsigned>(emoji);
    for (const char32_t none : {0x4DFFU, 0xA000U, 0x33FFU, 0x4DC0U, 0x1F2FFU, 0x1FB00U, 0x25FFU, 0x27C0U})
        EXPECT_EQ(kinds(none), std::tuple(false, false)) << std::hex << static_cast<unsigned>(none);
}

TEST(StyleProfile, CountsSamplesForToneAndScalarsForEmoji) {
    EXPECT_EQ(profile({QStringLiteral("THANKS! ok")}), QStringLiteral("short en casual none"));
    EXPECT_EQ(profile({QStringLiteral("您好 lol 123")}), QStringLiteral("short mixed neutral none"));
    EXPECT_EQ(profile({QStringLiteral("regards lol Sincerely"), QStringLiteral("best REGARDS")}),
              QStringLiteral("short en formal none"));
    EXPECT_EQ(profile({QStringLiteral("a😀")}), QStringLiteral("short en neutral some"));
    EXPECT_EQ(profile({QStringLiteral("a😀☀")}), QStringLiteral("short en neutral frequent"));
    EXPECT_EQ(profile({QStringLiteral("a😀😀"), QStringLiteral("b")}), QStringLiteral("short en neutral some"));
    EXPECT_EQ(profile({QStringLiteral("a👍🏽")}), QStringLiteral("short en neutral frequent"));  // two scalars
}

TEST(StyleProfile, SeesListsAfterALineFeedOnly) {
    EXPECT_EQ(profile({QStringLiteral("- a")}), QStringLiteral("short en neutral none"));
    for (const char16_t* list : {u"a\n-b", u"a\n• b", u"a\n* b"})
        EXPECT_EQ(profile({QString::fromUtf16(list)}), QStringLiteral("short en neutral none list"));
    EXPECT_EQ(profile({QStringLiteral("a\n*b")}), QStringLiteral("short en neutral none"));
}

}  // namespace tavrelon::persistence
