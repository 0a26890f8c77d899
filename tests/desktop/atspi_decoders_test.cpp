#include <gtest/gtest.h>

#include <random>

#include "desktop/atspi/atspi_protocol.h"
#include "desktop/atspi/field_repair.h"
#include "desktop/atspi/field_text.h"
#include "desktop/atspi/focus_book.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop::atspi {
namespace {

using text::Utf16Range;

const auto gtk = toolkitNamed(QStringLiteral("gtk"));
const auto qt = toolkitNamed(QStringLiteral("Qt"));
const auto chromium = toolkitNamed(QStringLiteral("Chromium"));

TEST(FieldText, OffsetsGoBothWaysBetweenCodePointsAndUtf16) {
    const auto text = QStringLiteral("ab😀cd👩‍👩‍👧");
    EXPECT_EQ(toUtf16Offset(text, 2, OffsetUnit::CodePoints), 2);
    EXPECT_EQ(toUtf16Offset(text, 3, OffsetUnit::CodePoints), 4);
    EXPECT_EQ(toUtf16Offset(text, 5, OffsetUnit::CodePoints), 6);
    EXPECT_EQ(toUtf16Offset(text, 99, OffsetUnit::CodePoints), text.size());
    EXPECT_EQ(toUtf16Offset(text, -1, OffsetUnit::CodePoints), 0);
    EXPECT_EQ(toUtf16Offset(text, 99, OffsetUnit::Utf16), text.size());
    const auto points = text.toUcs4().size();
    for (qint64 point = 0; point <= points; ++point)
        EXPECT_EQ(toApplicationOffset(text, toUtf16Offset(text, point, OffsetUnit::CodePoints), OffsetUnit::CodePoints),
                  point);
    EXPECT_EQ(toApplicationOffset(text, 4, OffsetUnit::Utf16), 4);
}

TEST(FieldText, OffsetsThatWereConvertedTwiceAreConvertedBack) {
    const auto text = QStringLiteral("a😀b😀c end");  // as a browser reported its selections of this text
    EXPECT_EQ(selectionOf(text, {{{4, 7}}, 6, 1}, chromium), (Utf16Range{8, 3}));
    EXPECT_EQ(selectionOf(text, {{{4, 7}}, 9, 1}, chromium), (Utf16Range{8, 3}));
    EXPECT_EQ(selectionOf(text, {{{1, 4}}, 6, 1}, chromium), (Utf16Range{1, 7}));
    EXPECT_EQ(selectionOf(text, {{{0, 0}}, 6, 0}, chromium), (Utf16Range{8, 0})) << "nothing is selected";
    const auto one = QStringLiteral("first 😀 second");
    EXPECT_EQ(selectionOf(one, {{{0, 0}}, 2, 1}, chromium), (Utf16Range{2, 6})) << "up to behind the character";
    EXPECT_EQ(selectionOf(one, {{{0, 0}}, 14, 1}, chromium), (Utf16Range{8, 7}));
    EXPECT_EQ(selectionOf(text, {{{0, 0}}, 7, 1}, chromium), std::nullopt) << "it could be one of two places";
    EXPECT_EQ(selectionOf(one, {{{0, 0}}, 7, 1}, chromium), std::nullopt) << "the other end could be anywhere";
}

TEST(FieldText, WithoutASelectionTheCaretCounts) {
    const auto text = QStringLiteral("ab😀cd");
    EXPECT_EQ(selectionOf(text, {{{3, 3}}, 3}, gtk), (Utf16Range{4, 0}));
    EXPECT_EQ(selectionOf(text, {{{0, 0}}, 4}, qt), (Utf16Range{4, 0}));
    EXPECT_EQ(selectionOf(text, {{}, 5}, toolkitNamed(QStringLiteral("GTK"))), (Utf16Range{6, 0}));
    EXPECT_EQ(selectionOf(text, {{{-1, 0}}, 1}, gtk), (Utf16Range{1, 0}));
    EXPECT_EQ(selectionOf(text, {{{2, 2}}, {}}, gtk), (Utf16Range{2, 0}));
    EXPECT_EQ(selectionOf(text, {{}, -1}, gtk), std::nullopt);
}

TEST(FieldRepair, LeadsFromAnyTextToAnyOtherWithoutSplittingCharacters) {
    EXPECT_EQ(editBetween(QStringLiteral("one  three"), QStringLiteral("one two three")),
              (TextEdit{{4, 0}, QStringLiteral("two")}));
    // These share their first unit, and the next two their last.
    EXPECT_EQ(editBetween(QStringLiteral("😀"), QStringLiteral("😁")), (TextEdit{{0, 2}, QStringLiteral("😁")}));
    EXPECT_EQ(editBetween(QString::fromUcs4(U"\U00010400"), QString::fromUcs4(U"\U00011400")).removed.length, 2);

    std::mt19937 random(7);
    const auto alphabet = QStringLiteral("ab😀😁").toUcs4();
    const auto any = [&] {
        QString text;
        for (auto n = random() % 8; n > 0; --n)
            text += QString::fromUcs4(reinterpret_cast<const char32_t*>(&alphabet[random() % 4]), 1);
        return text;
    };
    for (int i = 0; i < 2000; ++i) {
        const auto from = any();
        const auto to = any();
        const auto edit = editBetween(from, to);
        ASSERT_EQ(edit.applied(from), to) << from.toStdString();
        ASSERT_EQ(QString::fromUtf8(edit.inserted.toUtf8()), edit.inserted) << to.toStdString();
        ASSERT_TRUE(text::substring(from, edit.removed)) << from.toStdString();
    }
}

TEST(FocusBook, AFindingDoesNotOverruleWhatTheApplicationSaidMeanwhile) {
    const ObjectReference before{QStringLiteral(":1.1"), QStringLiteral("/before")};
    const ObjectReference said{QStringLiteral(":1.1"), QStringLiteral("/said")};
    const ObjectReference found{QStringLiteral(":1.1"), QStringLiteral("/found")};
    FocusBook book;
    book.found(before, std::nullopt);
    EXPECT_EQ(book.elements(), std::vector{before});
    book.found(found, before);
    EXPECT_EQ(book.elements(), std::vector{found});
    book.gained(said);
    book.found(found, before);
    book.found(found, std::nullopt);
    EXPECT_EQ(book.elements(), std::vector{said});
}

}  // namespace
}  // namespace tavrelon::desktop::atspi
