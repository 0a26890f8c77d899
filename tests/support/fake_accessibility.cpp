#include "support/fake_accessibility.h"

#include <algorithm>

namespace tavrelon::testing {

using platform::AXAttributedString;
using text::Utf16Range;

FakeAccessibility::AXElement FakeAccessibility::fieldElement() const {
    return {Kind::Object, 0, QStringLiteral(":field"), fieldPath};
}

void FakeAccessibility::focus(const QString& value) {
    focus(value, {value.size(), 0});
}

void FakeAccessibility::focus(const QString& value, Utf16Range selection) {
    field = Field{value, selection};
}

void FakeAccessibility::fail(Kind kind, AXAttribute attribute, AXError error) {
    scripts_.insert_or_assign({kind, attribute}, std::unexpected(error));
}

void FakeAccessibility::answer(Kind kind, AXAttribute attribute, AXValue value) {
    scripts_.insert_or_assign({kind, attribute}, std::move(value));
}

void FakeAccessibility::behave(Kind kind, AXAttribute attribute) {
    scripts_.erase({kind, attribute});
}

int FakeAccessibility::callCount(Kind kind, AXAttribute attribute) const {
    return static_cast<int>(std::ranges::count_if(
        calls_, [&](const Call& call) { return call.element.kind == kind && call.attribute == attribute; }));
}

std::optional<FakeAccessibility::Result> FakeAccessibility::scripted(const AXElement& element,
                                                                     AXAttribute attribute) const {
    const auto found = scripts_.find({element.kind, attribute});
    if (found == scripts_.end())
        return std::nullopt;
    return found->second;
}

FakeAccessibility::Result FakeAccessibility::copyAttribute(const AXElement& element, AXAttribute attribute) {
    calls_.push_back({Call::Operation::Copy, element, attribute, {}});
    if (auto result = scripted(element, attribute))
        return *result;
    switch (element.kind) {
        case Kind::SystemWide:
            return ofSystem(attribute);
        case Kind::Application:
            return ofApplication(element.processIdentifier, attribute);
        case Kind::Window:
            return ofWindow(attribute);
        case Kind::Object:
            return ofField(element, attribute);
    }
    return std::unexpected(AXError::IllegalArgument);
}

FakeAccessibility::Result FakeAccessibility::ofSystem(AXAttribute attribute) const {
    if (attribute == AXAttribute::FocusedUIElement)
        return frontmostProcess ? ofApplication(*frontmostProcess, attribute) : std::unexpected(AXError::NoValue);
    if (attribute != AXAttribute::FocusedApplication)
        return std::unexpected(AXError::AttributeUnsupported);
    if (!frontmostProcess)
        return std::unexpected(AXError::NoValue);
    return platform::axApplicationElement(*frontmostProcess);
}

FakeAccessibility::Result FakeAccessibility::ofApplication(qint64 process, AXAttribute attribute) const {
    if (attribute != AXAttribute::FocusedUIElement && attribute != AXAttribute::FocusedWindow)
        return std::unexpected(AXError::AttributeUnsupported);
    if (frontmostProcess != process)
        return std::unexpected(AXError::NoValue);
    if (attribute == AXAttribute::FocusedWindow)
        return AXElement{Kind::Window, process, {}, {}};
    if (!field)
        return std::unexpected(AXError::NoValue);
    return fieldElement();
}

FakeAccessibility::Result FakeAccessibility::ofWindow(AXAttribute attribute) const {
    if (attribute != AXAttribute::Title)
        return std::unexpected(AXError::AttributeUnsupported);
    if (!windowTitle)
        return std::unexpected(AXError::NoValue);
    return *windowTitle;
}

FakeAccessibility::Result FakeAccessibility::ofField(const AXElement& element, AXAttribute attribute) const {
    if (!field || element != fieldElement())
        return std::unexpected(AXError::InvalidUIElement);
    const bool isPlace = attribute == AXAttribute::Position || attribute == AXAttribute::Size;
    if (fieldKind == platform::FocusKind::Password && !isPlace)
        return std::unexpected(AXError::SecureField);
    switch (attribute) {
        case AXAttribute::Value:
            return field->value;
        case AXAttribute::SelectedTextRange:
            return field->selection;
        case AXAttribute::SelectedText:
            return field->value.mid(field->selection.location, field->selection.length);
        case AXAttribute::Position:
            if (fieldFrame)
                return fieldFrame->origin;
            return std::unexpected(AXError::AttributeUnsupported);
        case AXAttribute::Size:
            if (fieldFrame)
                return fieldFrame->size;
            return std::unexpected(AXError::AttributeUnsupported);
        default:
            return std::unexpected(AXError::AttributeUnsupported);
    }
}

FakeAccessibility::Result FakeAccessibility::copyParameterizedAttribute(const AXElement& element, AXAttribute attribute,
                                                                        Utf16Range range) {
    calls_.push_back({Call::Operation::CopyParameterized, element, attribute, range});
    if (auto result = scripted(element, attribute))
        return *result;
    const bool isKnown =
        attribute == AXAttribute::AttributedStringForRange || (attribute == AXAttribute::BoundsForRange && caretBounds);
    if (element.kind != Kind::Object || !isKnown)
        return std::unexpected(AXError::ParameterizedAttributeUnsupported);
    if (!field || element != fieldElement())
        return std::unexpected(AXError::InvalidUIElement);
    if (fieldKind == platform::FocusKind::Password)
        return std::unexpected(AXError::SecureField);
    if (range.location < 0 || range.length < 0 || range.location > field->value.size())
        return std::unexpected(AXError::IllegalArgument);
    if (attribute == AXAttribute::BoundsForRange)
        return *caretBounds;
    return AXAttributedString{field->value.mid(range.location, range.length)};
}

FakeAccessibility::AXError FakeAccessibility::setAttribute(const AXElement& element, AXAttribute attribute,
                                                           const QString& value) {
    calls_.push_back({Call::Operation::Set, element, attribute, {}});
    if (element.kind != Kind::Object || attribute != AXAttribute::SelectedText)
        return AXError::AttributeUnsupported;
    if (!field || element != fieldElement())
        return AXError::InvalidUIElement;
    if (fieldKind == platform::FocusKind::Password)
        return AXError::SecureField;
    if (setSelectedTextResult != AXError::Success)
        return setSelectedTextResult;
    field->value.replace(field->selection.location, field->selection.length, value);
    field->selection = {field->selection.location + value.size(), 0};
    return AXError::Success;
}

FakeAccessibility::AXError FakeAccessibility::replaceText(const AXElement& element, text::Utf16Range range,
                                                          const QString& expected, const QString& text) {
    if (!replacesText)
        return AXError::AttributeUnsupported;
    if (!field || element != fieldElement())
        return AXError::InvalidUIElement;
    if (text::substring(field->value, range) != expected)
        return AXError::NoValue;
    field->value.replace(range.location, range.length, text);
    field->selection = {range.location + text.size(), 0};
    return AXError::Success;
}

}  // namespace tavrelon::testing
