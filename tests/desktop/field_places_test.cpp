#include <gtest/gtest.h>

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

}  // namespace

}  // namespace tavrelon::testing
