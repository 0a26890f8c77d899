#include "persistence/style_profile.h"

#include <gtest/gtest.h>

#include <QStringList>

#include "support/qt_gtest.h"

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

}  // namespace

TEST(StyleProfile, LooksAtTheNewestInputsThatAreNotBlank) {
    EXPECT_EQ(profile({}), QStringLiteral("absent"));
    EXPECT_EQ(profile({QStringLiteral(" \n\t"), QString()}), QStringLiteral("absent"));
    EXPECT_EQ(profile({QStringLiteral("hello")}, 0), QStringLiteral("absent"));
    EXPECT_EQ(profile({QStringLiteral(" "), QStringLiteral("hello"), QStringLiteral("您好")}, 1),
              QStringLiteral("short en neutral none"));
}

TEST(StyleProfile, WeighsScripts) {
    EXPECT_EQ(profile({QStringLiteral("今天天气很好啊吧"), QStringLiteral("ok")}),
              QStringLiteral("short zh neutral none"));
    EXPECT_EQ(profile({QStringLiteral("好ab")}), QStringLiteral("short mixed neutral none"));
    EXPECT_EQ(profile({QStringLiteral("好abc")}), QStringLiteral("short en neutral none"));
    EXPECT_EQ(profile({QStringLiteral("好好好a")}), QStringLiteral("short zh neutral none"));
    EXPECT_EQ(profile({QStringLiteral("123 ünd")}), QStringLiteral("short en neutral none"));
    EXPECT_EQ(profile({QStringLiteral("カナ 123")}), QStringLiteral("short mixed neutral none"));
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

}  // namespace tavrelon::persistence
