#include <gtest/gtest.h>

#include "contract/accessibility_contract.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {
namespace {

using platform::AXAttribute;
using platform::AXAttributedString;
using platform::AXElement;
using platform::AXError;
using platform::AXValue;
using text::Utf16Range;

class AccessibilityContract : public ::testing::TestWithParam<const char*> {
 public:
    std::unique_ptr<ContractField> current;

    void SetUp() override {
        const std::string name = GetParam();
        current = name == "fake" ? makeFakeField() : makeEditorField(QString::fromStdString(name));
    }
    platform::Accessibility& accessibility() const { return current->accessibility(); }

    void arrange(const QString& value, Utf16Range selection) const {
        current->arrange(value, selection);
        current->nextTurn();
    }
    AXElement field() const {
        current->nextTurn();
        const auto found =
            accessibility().copyAttribute(platform::axSystemWideElement(), AXAttribute::FocusedUIElement);
        EXPECT_TRUE(found);
        return found ? std::get<AXElement>(*found) : AXElement{};
    }
    auto read(const AXElement& element, AXAttribute attribute) const {
        current->nextTurn();
        return accessibility().copyAttribute(element, attribute);
    }
};

TEST_P(AccessibilityContract, LeadsFromTheSystemToTheFieldAndToTheTitle) {
    arrange(QStringLiteral("text"), {0, 0});
    const auto system = platform::axSystemWideElement();
    const auto application = platform::axApplicationElement(current->process());
    EXPECT_EQ(read(system, AXAttribute::FocusedApplication), AXValue(application));
    EXPECT_EQ(read(application, AXAttribute::FocusedUIElement), AXValue(field()));
    EXPECT_EQ(field().kind, AXElement::Kind::Object);

    const auto window = read(application, AXAttribute::FocusedWindow);
    ASSERT_TRUE(window);
    const auto title = read(std::get<AXElement>(*window), AXAttribute::Title);
    ASSERT_TRUE(title);
    EXPECT_FALSE(std::get<QString>(*title).isEmpty());
    EXPECT_TRUE(accessibility().isProcessTrusted());
}

TEST_P(AccessibilityContract, CountsInUtf16UnitsOfTheValue) {
    arrange(QStringLiteral("ab😀cd"), {2, 3});
    EXPECT_EQ(read(field(), AXAttribute::Value), AXValue(QStringLiteral("ab😀cd")));
    EXPECT_EQ(read(field(), AXAttribute::SelectedTextRange), AXValue(Utf16Range{2, 3}));
    EXPECT_EQ(read(field(), AXAttribute::SelectedText), AXValue(QStringLiteral("😀c")));
}

TEST_P(AccessibilityContract, WithoutASelectionGivesTheCaretAndAnEmptyText) {
    arrange(QStringLiteral("😀😀\nx"), {4, 0});
    EXPECT_EQ(read(field(), AXAttribute::SelectedTextRange), AXValue(Utf16Range{4, 0}));
    EXPECT_EQ(read(field(), AXAttribute::SelectedText), AXValue(QString()));
    arrange(QString(), {0, 0});
    EXPECT_EQ(read(field(), AXAttribute::Value), AXValue(QString()));
    EXPECT_EQ(read(field(), AXAttribute::SelectedTextRange), AXValue(Utf16Range{0, 0}));
}

TEST_P(AccessibilityContract, GivesTheTextOfARangeAsFarAsItGoes) {
    arrange(QStringLiteral("ab😀cd"), {0, 0});
    const auto part = [&](Utf16Range range) {
        return accessibility().copyParameterizedAttribute(field(), AXAttribute::AttributedStringForRange, range);
    };
    EXPECT_EQ(part({1, 3}), AXValue(AXAttributedString{QStringLiteral("b😀")}));
    EXPECT_EQ(part({4, 1024}), AXValue(AXAttributedString{QStringLiteral("cd")}));
    EXPECT_EQ(part({6, 1}), AXValue(AXAttributedString{QString()}));
    EXPECT_EQ(part({7, 1}), std::unexpected(AXError::IllegalArgument));
    EXPECT_EQ(part({-1, 1}), std::unexpected(AXError::IllegalArgument));
    EXPECT_EQ(part({0, -1}), std::unexpected(AXError::IllegalArgument));
}

TEST_P(AccessibilityContract, ReplacesTheSelectionAndPutsTheCaretBehind) {
    struct Case {
        QString before;
        Utf16Range selection;
        QString inserted;
        QString after;
    };
    const Case cases[] = {
        {QStringLiteral("ab😀cd"), {2, 3}, QStringLiteral("X😀Y"), QStringLiteral("abX😀Yd")},
        {QStringLiteral("ab😀cd"), {4, 0}, QStringLiteral("中文\nzwei"), QStringLiteral("ab😀中文\nzweicd")},
        {QStringLiteral("ab😀cd"), {0, 6}, QStringLiteral("é"), QStringLiteral("é")},
        {QStringLiteral("ab😀cd"), {1, 1}, QString(), QStringLiteral("a😀cd")},
        {QStringLiteral("same"), {0, 4}, QStringLiteral("same"), QStringLiteral("same")},
        {QString(), {0, 0}, QStringLiteral("new"), QStringLiteral("new")},
    };
    for (const auto& [before, selection, inserted, after] : cases) {
        SCOPED_TRACE(after.toStdString());
        arrange(before, selection);
        EXPECT_EQ(accessibility().setAttribute(field(), AXAttribute::SelectedText, inserted), AXError::Success);
        EXPECT_EQ(read(field(), AXAttribute::Value), AXValue(after));
        EXPECT_EQ(read(field(), AXAttribute::SelectedTextRange),
                  AXValue(Utf16Range{selection.location + inserted.size(), 0}));
    }
}

TEST_P(AccessibilityContract, SeesItsOwnWriteInTheSameTurn) {
    arrange(QStringLiteral("one two"), {4, 3});
    const auto element = field();
    EXPECT_EQ(accessibility().copyAttribute(element, AXAttribute::SelectedText), AXValue(QStringLiteral("two")));
    EXPECT_EQ(accessibility().setAttribute(element, AXAttribute::SelectedText, QStringLiteral("2")), AXError::Success);
    EXPECT_EQ(accessibility().copyAttribute(element, AXAttribute::Value), AXValue(QStringLiteral("one 2")));
}

TEST_P(AccessibilityContract, RefusesWhatAnElementDoesNotHave) {
    arrange(QStringLiteral("text"), {0, 0});
    const auto unsupported = std::unexpected(AXError::AttributeUnsupported);
    EXPECT_EQ(read(field(), AXAttribute::Title), unsupported);
    EXPECT_EQ(read(platform::axSystemWideElement(), AXAttribute::Value), unsupported);
    EXPECT_EQ(read(platform::axApplicationElement(current->process()), AXAttribute::Value), unsupported);
    EXPECT_EQ(accessibility().copyParameterizedAttribute(field(), AXAttribute::Value, {0, 1}),
              std::unexpected(AXError::ParameterizedAttributeUnsupported));
    EXPECT_EQ(accessibility().setAttribute(field(), AXAttribute::Value, QStringLiteral("x")),
              AXError::AttributeUnsupported);
    EXPECT_EQ(read(field(), AXAttribute::Value), AXValue(QStringLiteral("text")));
}

TEST_P(AccessibilityContract, KnowsNothingOfWhatIsNotInFrontOrGone) {
    arrange(QStringLiteral("text"), {0, 0});
    const auto other = platform::axApplicationElement(1);
    EXPECT_EQ(read(other, AXAttribute::FocusedUIElement), std::unexpected(AXError::NoValue));
    EXPECT_EQ(read(other, AXAttribute::FocusedWindow), std::unexpected(AXError::NoValue));
    auto gone = field();
    gone.path = QStringLiteral("/org/a11y/atspi/accessible/987654");
    EXPECT_EQ(read(gone, AXAttribute::Value), std::unexpected(AXError::InvalidUIElement));
    EXPECT_EQ(accessibility().setAttribute(gone, AXAttribute::SelectedText, QStringLiteral("x")),
              AXError::InvalidUIElement);
}

INSTANTIATE_TEST_SUITE_P(All, AccessibilityContract, ::testing::Values("fake", "mousepad", "featherpad"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace tavrelon::testing
