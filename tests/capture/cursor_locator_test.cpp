#include "capture/cursor_locator.h"

#include <gtest/gtest.h>

#include "support/fake_accessibility.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using capture::CursorLocator;
using platform::AXAttribute;
using platform::AXError;
using platform::AXRect;
using Kind = platform::AXElement::Kind;

class CaretPlace : public ::testing::Test {
 public:
    static constexpr AXRect caret{{100, 50}, {1, 16}};
    static constexpr AXRect frame{{90, 40}, {400, 300}};
    FakeAccessibility accessibility;
    CursorLocator locator{accessibility};

    CaretPlace() {
        accessibility.focus(QStringLiteral("some text"), {5, 0});
        accessibility.caretBounds = caret;
        accessibility.fieldFrame = frame;
    }
};

TEST_F(CaretPlace, IsAskedForWithTheSelectionAsItCame) {
    EXPECT_EQ(locator.caretRect(), caret);
    EXPECT_EQ(accessibility.calls().back().range, (text::Utf16Range{5, 0}));
    EXPECT_EQ(accessibility.calls().back().attribute, AXAttribute::BoundsForRange);
}

TEST_F(CaretPlace, IsTheWholeFieldWhereTheCaretIsNotTold) {
    accessibility.caretBounds = AXRect{{100, 50}, {0, 16}};
    EXPECT_EQ(locator.caretRect(), frame) << "an empty rectangle";
    accessibility.caretBounds.reset();
    EXPECT_EQ(locator.caretRect(), frame) << "no rectangle";
    accessibility.caretBounds = caret;
    accessibility.answer(Kind::Object, AXAttribute::BoundsForRange, QStringLiteral("here"));
    EXPECT_EQ(locator.caretRect(), frame) << "no rectangle, but something else";
    accessibility.behave(Kind::Object, AXAttribute::BoundsForRange);
    accessibility.fail(Kind::Object, AXAttribute::SelectedTextRange, AXError::NoValue);
    EXPECT_EQ(locator.caretRect(), frame) << "no selection";
}

TEST_F(CaretPlace, IsUnknownWithoutAPlaceOrAnElement) {
    accessibility.caretBounds.reset();
    accessibility.fail(Kind::Object, AXAttribute::Size, AXError::CannotComplete);
    EXPECT_EQ(locator.caretRect(), std::nullopt);
    accessibility.behave(Kind::Object, AXAttribute::Size);
    accessibility.field.reset();
    EXPECT_EQ(locator.caretRect(), std::nullopt);
    accessibility.frontmostProcess.reset();
    EXPECT_EQ(locator.caretRect(), std::nullopt);
}

}  // namespace tavrelon::testing
