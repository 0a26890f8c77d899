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

}  // namespace

}  // namespace tavrelon::testing
