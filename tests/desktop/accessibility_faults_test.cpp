#include <gtest/gtest.h>

#include <QCoreApplication>
#include <csignal>

#include "desktop/accessibility_session.h"
#include "support/fake_accessibility.h"
#include "support/fake_accessible_app.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {
namespace {

using namespace std::chrono_literals;
using platform::AXAttribute;
using platform::AXElement;
using platform::AXError;
using platform::AXValue;
using text::Utf16Range;

/// One application that behaves in the one way that a test is about, and the adapter.
class AccessibilityFaults : public ::testing::Test {
 public:
    AccessibilitySession session;
    AccessibilityBus bus;
    std::unique_ptr<RunningProgram> app;
    AXElement field;

    void start(Manners manners, const QString& text, int from, int to, const QString& toolkit = QStringLiteral("gtk")) {
        app = std::make_unique<RunningProgram>(QStringLiteral(FAKE_ACCESSIBLE_APP),
                                               QStringList{QString::number(static_cast<int>(manners)), toolkit, text,
                                                           QString::number(from), QString::number(to)});
        session.putInFront(app->process());
        nextTurn();
        ASSERT_TRUE(eventually([&] {
            const auto found = session.focused();
            if (found)
                field = std::get<AXElement>(*found);
            return found.has_value();
        }));
        nextTurn();
    }

    QVariant control(const char* method, const QVariantList& arguments = {}) const {
        const AXElement target{AXElement::Kind::Object, 0, field.busName, QLatin1String(FakeAccessibleApp::control)};
        return bus.call(target, "test.Control", method, arguments).arguments().value(0);
    }
    QString text() const { return control("Text").toString(); }
    QStringList calls() const { return control("Calls").toStringList(); }
    AXError replaceSelection(const QString& with) {
        return session.accessibility.setAttribute(field, AXAttribute::SelectedText, with);
    }
};

/// What a field with the text "ab😀cd", of which "😀c" is selected, tells and takes: units are those of UTF-16, and a
/// write is seen in its own turn.
void expectHonest(platform::Accessibility& accessibility, const AXElement& field) {
    const auto read = [&](AXAttribute attribute) { return accessibility.copyAttribute(field, attribute); };
    const auto part = [&](Utf16Range range) {
        return accessibility.copyParameterizedAttribute(field, AXAttribute::AttributedStringForRange, range);
    };
    const auto replace = [&](const QString& with) {
        return accessibility.setAttribute(field, AXAttribute::SelectedText, with);
    };
    EXPECT_EQ(accessibility.focusKind(), platform::FocusKind::Ordinary);
    EXPECT_EQ(read(AXAttribute::SelectedTextRange), AXValue(Utf16Range{2, 3}));
    EXPECT_EQ(read(AXAttribute::SelectedText), AXValue(QStringLiteral("😀c")));
    EXPECT_EQ(part({1, 3}), AXValue(platform::AXAttributedString{QStringLiteral("b😀")}));
    EXPECT_EQ(part({4, 1024}), AXValue(platform::AXAttributedString{QStringLiteral("cd")}));
    for (const auto outside : {Utf16Range{7, 1}, Utf16Range{-1, 1}, Utf16Range{0, -1}})
        EXPECT_EQ(part(outside), std::unexpected(AXError::IllegalArgument));
    EXPECT_EQ(replace(QStringLiteral("X😀Y")), AXError::Success);
    EXPECT_EQ(read(AXAttribute::Value), AXValue(QStringLiteral("abX😀Yd")));
    EXPECT_EQ(read(AXAttribute::SelectedTextRange), AXValue(Utf16Range{6, 0}));
    EXPECT_EQ(replace(QStringLiteral("中\nz")), AXError::Success);
    EXPECT_EQ(read(AXAttribute::Value), AXValue(QStringLiteral("abX😀Y中\nzd")));
    EXPECT_EQ(read(AXAttribute::Title), std::unexpected(AXError::AttributeUnsupported));
    EXPECT_EQ(accessibility.setAttribute(field, AXAttribute::Value, QStringLiteral("x")),
              AXError::AttributeUnsupported);
    EXPECT_EQ(accessibility.copyAttribute(platform::axApplicationElement(1), AXAttribute::FocusedUIElement),
              std::unexpected(AXError::NoValue));
    auto gone = field;
    gone.path = QStringLiteral("/org/a11y/atspi/accessible/987654");
    EXPECT_EQ(accessibility.copyAttribute(gone, AXAttribute::Value), std::unexpected(AXError::InvalidUIElement));
    EXPECT_EQ(accessibility.setAttribute(gone, AXAttribute::SelectedText, QString()), AXError::InvalidUIElement);
}

TEST_F(AccessibilityFaults, AnHonestFieldIsAsTheFakeOfTheLogicTests) {
    FakeAccessibility fake;
    fake.focus(QStringLiteral("ab😀cd"), {2, 3});
    expectHonest(fake, fake.fieldElement());
    for (const auto& [toolkit, end] : {std::pair(QStringLiteral("gtk"), 4), std::pair(QStringLiteral("Qt"), 5)}) {
        SCOPED_TRACE(toolkit.toStdString());
        start(Manners::Honest, QStringLiteral("ab😀cd"), 2, end, toolkit);
        expectHonest(session.accessibility, field);
        EXPECT_EQ(text(), QStringLiteral("abX😀Y中\nzd"));
    }
}

TEST_F(AccessibilityFaults, AFieldThatOnlySaysThatItChangedIsReportedAndKeepsTextAndSelection) {
    start(Manners::Lies, QStringLiteral("keep this text"), 5, 9);
    EXPECT_EQ(replaceSelection(QStringLiteral("that")), AXError::Failure);
    EXPECT_FALSE(calls().contains(QStringLiteral("InsertText"))) << "what was not deleted must not be doubled";
    EXPECT_EQ(text(), QStringLiteral("keep this text"));
    EXPECT_EQ(session.read(field, AXAttribute::SelectedText), AXValue(QStringLiteral("this")));
}

TEST_F(AccessibilityFaults, WhatWasDeletedComesBackWithItsSelectionWhenTheNewTextIsDropped) {
    for (const auto manners : {Manners::LosesOnce, Manners::LosesAlways}) {
        start(manners, QStringLiteral("ke😀ep this text"), 6, 10);
        EXPECT_EQ(replaceSelection(QStringLiteral("that")), AXError::Failure);
        EXPECT_EQ(text(), QStringLiteral("ke😀ep this text"));
        EXPECT_EQ(session.read(field, AXAttribute::SelectedText), AXValue(QStringLiteral("this")));
    }
    EXPECT_EQ(session.log.lines(), QStringList());
}

TEST_F(AccessibilityFaults, ALossThatCannotBeMendedIsLoggedWithoutTheText) {
    start(Manners::LosesForGood, QStringLiteral("keep this text"), 5, 9);
    EXPECT_EQ(replaceSelection(QStringLiteral("that")), AXError::Failure);
    ASSERT_EQ(session.log.lines().size(), 1);
    EXPECT_TRUE(session.log.lines().front().contains(QStringLiteral("4 characters")));
    EXPECT_FALSE(session.log.lines().front().contains(QStringLiteral("this")));
}

TEST_F(AccessibilityFaults, ARefusedTextLeavesTheFieldUntouched) {
    start(Manners::Honest, QStringLiteral("keep this text"), 5, 9);
    EXPECT_EQ(replaceSelection(QStringLiteral("nul") + QChar(0)), AXError::IllegalArgument);
    EXPECT_EQ(replaceSelection(QString(QChar(0xD83D))), AXError::IllegalArgument);
    EXPECT_EQ(text(), QStringLiteral("keep this text"));
}

TEST_F(AccessibilityFaults, APictureInTheSelectionIsNotDeleted) {
    const QString withPicture = QStringLiteral("a") + QChar(0xFFFC) + QStringLiteral("b");
    start(Manners::Honest, withPicture, 0, 3);
    EXPECT_EQ(replaceSelection(QStringLiteral("x")), AXError::AttributeUnsupported);
    EXPECT_EQ(text(), withPicture);
}

TEST_F(AccessibilityFaults, AnApplicationThatLeavesTheInsertionUnansweredIsToldNothingMore) {
    start(Manners::MuteInserting, QStringLiteral("keep this text"), 5, 9);
    AXError result{};
    EXPECT_LT(timeOf([&] { result = replaceSelection(QStringLiteral("that")); }), 600ms);
    EXPECT_EQ(result, AXError::CannotComplete);
    EXPECT_EQ(calls().count(QStringLiteral("InsertText")), 1);
    EXPECT_FALSE(calls().contains(QStringLiteral("SetTextContents")));
}

TEST_F(AccessibilityFaults, ATextThatIsNeverGivenCostsOneBoundedWaitUntilItIsGiven) {
    start(Manners::MuteReading, QStringLiteral("at last"), 0, 0);
    const auto snapshot = [&] {
        session.focused();
        EXPECT_EQ(session.accessibility.copyAttribute(field, AXAttribute::SelectedTextRange),
                  std::unexpected(AXError::CannotComplete));
        EXPECT_EQ(session.accessibility.copyAttribute(field, AXAttribute::Value),
                  std::unexpected(AXError::CannotComplete));
    };
    EXPECT_LT(timeOf(snapshot), 400ms);
    for (int i = 0; i < 5; ++i) {
        nextTurn();
        EXPECT_LT(timeOf(snapshot), 60ms);
    }
    control("Speak");
    EXPECT_TRUE(
        eventually([&] { return session.read(field, AXAttribute::Value) == AXValue(QStringLiteral("at last")); }));
}

TEST_F(AccessibilityFaults, AnAnswerOfAnotherShapeIsAFailure) {
    start(Manners::Garbled, QStringLiteral("x"), 0, 0);
    EXPECT_EQ(session.read(field, AXAttribute::Value), std::unexpected(AXError::Failure));
    EXPECT_EQ(replaceSelection(QStringLiteral("y")), AXError::Failure);
    EXPECT_EQ(text(), QStringLiteral("x"));
}

TEST_F(AccessibilityFaults, APasswordIsNotEvenAskedFor) {
    start(Manners::Password, QStringLiteral("secret"), 0, 6);
    for (const auto attribute : {AXAttribute::Value, AXAttribute::SelectedText, AXAttribute::SelectedTextRange})
        EXPECT_EQ(session.read(field, attribute), std::unexpected(AXError::SecureField));
    EXPECT_EQ(replaceSelection(QStringLiteral("x")), AXError::SecureField);
    EXPECT_EQ(session.accessibility.focusKind(), platform::FocusKind::Password);
    EXPECT_FALSE(calls().contains(QStringLiteral("GetText")));
    EXPECT_EQ(text(), QStringLiteral("secret"));
}

TEST_F(AccessibilityFaults, AnElementThatIsNoTextAndATextThatIsOnlyReadAreUnsupported) {
    start(Manners::WithoutText, QStringLiteral("x"), 0, 0);
    EXPECT_EQ(session.read(field, AXAttribute::Value), std::unexpected(AXError::AttributeUnsupported));
    EXPECT_EQ(session.accessibility.copyParameterizedAttribute(field, AXAttribute::AttributedStringForRange, {0, 1}),
              std::unexpected(AXError::ParameterizedAttributeUnsupported));
    start(Manners::WithoutEditing, QStringLiteral("only read"), 0, 4);
    EXPECT_EQ(session.read(field, AXAttribute::SelectedText), AXValue(QStringLiteral("only")));
    EXPECT_EQ(replaceSelection(QStringLiteral("x")), AXError::AttributeUnsupported);
}

TEST_F(AccessibilityFaults, ABrowserThatPretendsToEditIsNotToldTo) {
    const QString sent = QStringLiteral("a😀") + QChar(0xFEFF) + QStringLiteral("bc");
    start(Manners::Honest, sent, 3, 4, QStringLiteral("Gecko"));
    EXPECT_EQ(session.read(field, AXAttribute::Value), AXValue(QStringLiteral("a😀bc")));
    EXPECT_EQ(session.read(field, AXAttribute::SelectedText), AXValue(QStringLiteral("b")));
    EXPECT_EQ(replaceSelection(QStringLiteral("x")), AXError::AttributeUnsupported);
    EXPECT_FALSE(calls().contains(QStringLiteral("DeleteText")));
}

TEST_F(AccessibilityFaults, TheFocusMovesWithTheNewsOfEitherToolkitTheNewElementsFirst) {
    const QString second = QLatin1String(FakeAccessibleApp::secondField);
    for (const auto& toolkit : {QStringLiteral("gtk"), QStringLiteral("Qt")}) {
        start(Manners::Honest, QStringLiteral("x"), 0, 0, toolkit);
        EXPECT_EQ(field.path, QString::fromLatin1(FakeAccessibleApp::firstField));
        control("Deactivate");  // from now on looking through the window finds nothing
        int told = 0;
        session.accessibility.onFocusChange([&] { ++told; });
        control("Focus", {second});
        control("Say", {second, 1});
        control("Say", {field.path, 0});
        EXPECT_TRUE(eventually([&] {
            nextTurn();
            const auto found = session.focused();
            return found && std::get<AXElement>(*found).path == second && told > 0;
        }));
        session.accessibility.onFocusChange({});
        control("Say", {second, 0});
        EXPECT_TRUE(eventually([&] {
            nextTurn();
            return session.focused() == std::unexpected(AXError::NoValue);
        }));
    }
}

TEST_F(AccessibilityFaults, AMovedFocusThatNobodyToldOfIsFoundInTheWindow) {
    start(Manners::Honest, QStringLiteral("x"), 0, 0);
    control("Focus", {QLatin1String(FakeAccessibleApp::secondField)});
    nextTurn();
    const auto found = session.focused();
    ASSERT_TRUE(found);
    EXPECT_EQ(std::get<AXElement>(*found).path, QLatin1String(FakeAccessibleApp::secondField))
        << "not the menu or the hidden part that claim the focus too";
    control("Focus", {QString()});
    nextTurn();
    EXPECT_EQ(session.focused(), std::unexpected(AXError::NoValue));
}

TEST_F(AccessibilityFaults, AContainerThatClaimsTheFocusDoesNotHideAFieldThatComesLater) {
    start(Manners::Honest, QStringLiteral("x"), 0, 0);
    control("Focus", {QString()});
    control("Claim");
    nextTurn();
    const auto container = session.focused();
    ASSERT_TRUE(container);
    EXPECT_EQ(session.read(std::get<AXElement>(*container), AXAttribute::Value),
              std::unexpected(AXError::AttributeUnsupported));
    control("Focus", {field.path});
    nextTurn();
    EXPECT_EQ(session.focused(), AXValue(field));
}

TEST_F(AccessibilityFaults, AnApplicationThatEndedLeavesAnInvalidElement) {
    start(Manners::Honest, QStringLiteral("x"), 0, 0);
    app.reset();
    EXPECT_EQ(session.read(field, AXAttribute::Value), std::unexpected(AXError::InvalidUIElement));
    EXPECT_EQ(session.focused(), std::unexpected(AXError::NoValue));
}

TEST_F(AccessibilityFaults, OurOwnProcessIsNotAsked) {
    session.putInFront(QCoreApplication::applicationPid());
    EXPECT_EQ(session.focused(), std::unexpected(AXError::NoValue));
}

TEST_F(AccessibilityFaults, AMegabyteOfTextIsReadAsAWhole) {
    start(Manners::Honest, QStringLiteral("x"), 0, 0);
    const auto text = QStringLiteral("0123456789abcdé😀").repeated(1 << 16);
    bus.call(field, "org.a11y.atspi.EditableText", "SetTextContents", {text});
    bus.call(field, "org.a11y.atspi.Text", "SetCaretOffset", {qint32{16 * 40000}});
    // A busy machine may need more than one turn's allowance at first.
    EXPECT_TRUE(eventually([&] {
        return session.read(field, AXAttribute::Value) == AXValue(text) &&
               session.read(field, AXAttribute::SelectedTextRange) == AXValue(text::Utf16Range{17 * 40000, 0});
    }));
}

}  // namespace
}  // namespace tavrelon::testing
