#include <gtest/gtest.h>

#include "capture/cursor_locator.h"
#include "desktop/accessibility_session.h"
#include "desktop/atspi/field_places.h"

namespace tavrelon::testing {

namespace {

using desktop::atspi::believableBounds;
using desktop::atspi::ReportedPlaces;
using platform::AXRect;

constexpr AXRect frame{{100, 100}, {400, 300}};

ReportedPlaces reported(std::optional<AXRect> text) {
    return {.frame = frame, .text = text, .before = std::nullopt, .first = std::nullopt, .linesBefore = std::nullopt};
}

TEST(BelievableBounds, ACaretIsThinAndAtTheCharactersLeftEdge) {
    const auto caret = believableBounds(reported(AXRect{{150, 120}, {9, 18}}), true, false);
    EXPECT_EQ(caret, (AXRect{{150, 120}, {1, 18}}));
    const auto selection = believableBounds(reported(AXRect{{150, 120}, {90, 18}}), false, false);
    EXPECT_EQ(selection, (AXRect{{150, 120}, {90, 18}}));
}

TEST(BelievableBounds, BehindTheLastCharacterItsRightEdgeServes) {
    auto places = reported(AXRect{{0, 0}, {0, 0}});
    EXPECT_EQ(believableBounds(places, true, false), std::nullopt);
    places.before = AXRect{{150, 120}, {9, 18}};
    EXPECT_EQ(believableBounds(places, true, false), (AXRect{{159, 120}, {1, 18}}));
    EXPECT_EQ(believableBounds(places, false, false), std::nullopt) << "a selection is not where one character is";
}

TEST(BelievableBounds, WhatLiesOutsideOfTheFieldIsWrong) {
    EXPECT_EQ(believableBounds(reported(AXRect{{150, 20}, {9, 18}}), true, false), std::nullopt);
    EXPECT_EQ(believableBounds(reported(AXRect{{150, 120}, {9, 500}}), true, false), std::nullopt);
    auto places = reported(AXRect{{150, 120}, {9, 18}});
    places.frame = AXRect{{100, 100}, {0, 0}};
    EXPECT_EQ(believableBounds(places, true, false), std::nullopt) << "a field without an extent says nothing";
}

TEST(BelievableBounds, LinesThatAllLieAtTheSameHeightAreWrong) {
    auto places = reported(AXRect{{150, 138}, {9, 18}});
    places.first = AXRect{{104, 120}, {9, 18}};
    places.linesBefore = AXRect{{104, 120}, {9, 18}};
    EXPECT_EQ(believableBounds(places, true, true), std::nullopt);
    places.linesBefore = AXRect{{104, 138}, {9, 18}};
    EXPECT_TRUE(believableBounds(places, true, true));
}

TEST(OriginOfWindow, IsWhereTheSizesOfTheWindowAndOfWhatItTellsAgree) {
    using desktop::atspi::originOfWindow;
    using platform::AXPoint;
    const AXRect told{{0, 0}, {690, 510}};
    const AXRect dialog{{0, 0}, {300, 200}};
    platform::WindowPlace place{.x = 290, .y = 140, .width = 690, .height = 510, .shadow = {}};
    EXPECT_EQ(originOfWindow(place, {dialog, told}), (AXPoint{290, 140}));
    EXPECT_EQ(originOfWindow(place, {dialog}), std::nullopt);
    place = {.x = 290, .y = 140, .width = 700, .height = 520, .shadow = {}};
    EXPECT_EQ(originOfWindow(place, {told}), (AXPoint{295, 145})) << "a border instead of a shadow";
    place = {.x = 290, .y = 140, .width = 740, .height = 557, .shadow = {25, 25, 20, 27}};
    EXPECT_EQ(originOfWindow(place, {told}), (AXPoint{315, 160}));
    place.height = 1000;  // the application has not heard of its new size yet
    EXPECT_EQ(originOfWindow(place, {told}), std::nullopt);
}

TEST(KnowsPlaceOfWindow, WhereAToldFrameCoversTheWindow) {
    using desktop::atspi::knowsPlaceOfWindow;
    const platform::WindowPlace place{.x = 290, .y = 157, .width = 700, .height = 500, .shadow = {}};
    EXPECT_TRUE(knowsPlaceOfWindow(place, {AXRect{{0, 0}, {50, 50}}, AXRect{{290, 157}, {700, 500}}}));
    EXPECT_TRUE(knowsPlaceOfWindow(place, {AXRect{{289, 137}, {702, 525}}})) << "with the window manager's frame";
    EXPECT_TRUE(knowsPlaceOfWindow(place, {}));
    EXPECT_FALSE(knowsPlaceOfWindow(place, {AXRect{{290, 132}, {700, 500}}})) << "off by a title";
}

/// An editor with four lines, and the caret to be moved in it.
class CaretInEditors : public ::testing::Test {
 public:
    QTemporaryDir folder;
    AccessibilitySession session;
    capture::CursorLocator locator{session.accessibility};
    std::unique_ptr<RunningProgram> program;
    platform::AXElement field;

    void open(const QString& editor) {
        const auto path = writeFile(folder, QStringLiteral("field.txt"), QStringLiteral("wide\nwide\nwide\nwide"));
        program = std::make_unique<RunningProgram>(editor, QStringList{path});
        const auto found = session.waitForFocusIn(program->process());
        ASSERT_TRUE(found);
        field = *found;
    }
    /// The caret's place once the application says that the caret is there.
    std::optional<AXRect> placeAt(const QStringList& keys, qint64 caret) {
        pressKeys(keys);
        const bool arrived = eventually([&] {
            return session.read(field, platform::AXAttribute::SelectedTextRange) ==
                   platform::AXValue(text::Utf16Range{caret, 0});
        });
        EXPECT_TRUE(arrived);
        nextTurn();
        return locator.caretRect();
    }
    AXRect fieldFrame() {
        const auto position = session.read(field, platform::AXAttribute::Position);
        const auto size = session.read(field, platform::AXAttribute::Size);
        if (!position || !size)
            return {};
        return {std::get<platform::AXPoint>(*position), std::get<platform::AXSize>(*size)};
    }
};

TEST_F(CaretInEditors, AToolkitThatTellsPlacesIsBelieved) {
    open(QStringLiteral("mousepad"));
    const auto first = placeAt({QStringLiteral("ctrl+Home")}, 0);
    const auto right = placeAt({QStringLiteral("Right"), QStringLiteral("Right")}, 2);
    const auto below = placeAt({QStringLiteral("Down")}, 7);
    const auto last = placeAt({QStringLiteral("ctrl+End")}, 19);
    ASSERT_TRUE(first && right && below && last);
    EXPECT_LT(first->size.height, 60);
    EXPECT_GT(right->origin.x, first->origin.x);
    EXPECT_EQ(right->origin.y, first->origin.y);
    EXPECT_EQ(below->origin.x, right->origin.x);
    EXPECT_EQ(below->origin.y - right->origin.y, (last->origin.y - right->origin.y) / 3);
    EXPECT_GT(below->origin.y, right->origin.y);
    EXPECT_GT(last->origin.x, below->origin.x);
}

TEST_F(CaretInEditors, AToolkitThatPutsAllLinesOnOneAnotherIsNot) {
    open(QStringLiteral("featherpad"));
    const auto onFirstLine = placeAt({QStringLiteral("ctrl+Home"), QStringLiteral("Right")}, 1);
    ASSERT_TRUE(onFirstLine);
    EXPECT_LT(onFirstLine->size.height, 60);
    EXPECT_EQ(placeAt({QStringLiteral("Down"), QStringLiteral("Down")}, 11), fieldFrame());
}

}  // namespace

}  // namespace tavrelon::testing
