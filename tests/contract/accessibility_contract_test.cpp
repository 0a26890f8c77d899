// What accessibility tells of a field and does to it, on the fake and in editors.
#include <gtest/gtest.h>

#include <memory>

#include "desktop/accessibility_session.h"
#include "support/fake_accessibility.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {
namespace {

using platform::AXAttribute;
using platform::AXAttributedString;
using platform::AXElement;
using platform::AXError;
using platform::AXValue;
using text::Utf16Range;

/// A field that has the focus, and the accessibility that is to see it: the fake's or an editor's on this desktop.
class ContractField {
 public:
    virtual ~ContractField() = default;

    virtual platform::Accessibility& accessibility() = 0;
    virtual qint64 process() const = 0;

    /// Gives the field a text and a selection within it, at character boundaries.
    virtual void arrange(const QString& value, text::Utf16Range selection) = 0;
};

class FakeField : public ContractField {
 public:
    FakeField() { fake_.windowTitle = QStringLiteral("a title"); }
    platform::Accessibility& accessibility() override { return fake_; }
    qint64 process() const override { return *fake_.frontmostProcess; }
    void arrange(const QString& value, Utf16Range selection) override { fake_.focus(value, selection); }

 private:
    FakeAccessibility fake_;
};

class EditorField : public ContractField {
 public:
    explicit EditorField(const QString& editor)
        : program_(editor, {writeFile(folder_, QStringLiteral("field.txt"), QStringLiteral("at first"))}) {
        const auto found = session_.waitForFocusIn(program_.process());
        EXPECT_TRUE(found) << "the editor's field never got the focus";
        field_ = found.value_or(AXElement{});
    }

    platform::Accessibility& accessibility() override { return session_.accessibility; }
    qint64 process() const override { return program_.process(); }

    void arrange(const QString& value, Utf16Range selection) override {
        bus_.call(field_, "org.a11y.atspi.EditableText", "SetTextContents", {value});
        QStringList keys{QStringLiteral("ctrl+Home")};
        const auto press = [&](const QString& key, Utf16Range over) {
            for (auto n = text::characterCount(value.mid(over.location, over.length)); n > 0; --n)
                keys.push_back(key);
        };
        press(QStringLiteral("Right"), {0, selection.location});
        press(QStringLiteral("shift+Right"), selection);
        pressKeys(keys);
        EXPECT_TRUE(eventually([&] {
            return session_.read(field_, AXAttribute::SelectedTextRange) == AXValue(selection) &&
                   session_.read(field_, AXAttribute::Value) == AXValue(value);
        })) << "the editor did not take the text";
    }

 private:
    QTemporaryDir folder_;
    AccessibilitySession session_;
    AccessibilityBus bus_;
    RunningProgram program_;
    AXElement field_;
};

class AccessibilityContract : public ::testing::TestWithParam<const char*> {
 public:
    std::unique_ptr<ContractField> current;

    void SetUp() override {
        const std::string name = GetParam();
        if (name == "fake")
            current = std::make_unique<FakeField>();
        else
            current = std::make_unique<EditorField>(QString::fromStdString(name));
    }
    platform::Accessibility& accessibility() const { return current->accessibility(); }

    void arrange(const QString& value, Utf16Range selection) const {
        current->arrange(value, selection);
        nextTurn();
    }
    AXElement field() const {
        nextTurn();
        const auto found =
            accessibility().copyAttribute(platform::axSystemWideElement(), AXAttribute::FocusedUIElement);
        EXPECT_TRUE(found);
        return found ? std::get<AXElement>(*found) : AXElement{};
    }
    auto read(const AXElement& element, AXAttribute attribute) const {
        nextTurn();
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

TEST_P(AccessibilityContract, TellsAFieldFromAPassword) {
    arrange(QStringLiteral("text"), {0, 0});
    EXPECT_EQ(accessibility().focusKind(), platform::FocusKind::Ordinary);
    EXPECT_FALSE(accessibility().isFocusSecure());
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
