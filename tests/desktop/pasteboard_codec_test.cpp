#include <gtest/gtest.h>

#include "desktop/x11/selection/x11_selection_codec.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

namespace {

const QString utf8String = QStringLiteral("UTF8_STRING");
const QString latin1 = QStringLiteral("STRING");
const QString plain = QStringLiteral("text/plain");

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

TEST(MetaTargets, AreNoContent) {
    for (const auto* name : {"TARGETS", "MULTIPLE", "INSERT_SELECTION", "INSERT_ANYTHING", "GTK_TEXT_BUFFER_CONTENTS"})
        EXPECT_TRUE(isMetaTarget(QString::fromLatin1(name))) << name;
    for (const auto* name : {"UTF8_STRING", "TEXT", "image/png", "x-special/gnome-copied-files", "COMPOUND_TEXT"})
        EXPECT_FALSE(isMetaTarget(QString::fromLatin1(name))) << name;
}

}  // namespace

}  // namespace tavrelon::desktop
