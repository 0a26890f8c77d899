#include "capture/focused_text.h"

namespace tavrelon::capture {

using platform::AXAttribute;
using platform::AXElement;

namespace {

/// How far a windowed read reaches before and after the selection, in UTF-16 units.
constexpr qint64 windowReach = 512;

/// The location that stands for "no range".
constexpr qint64 notFound = -1;

QString tagged(const QString& message) {
    return QStringLiteral("[ContextCapturer] ") + message;
}

}  // namespace

std::optional<AccessibilityTextSnapshot> FocusedText::snapshotOf(const AXElement& element) {
    const auto range = selectedRangeOf(element);
    auto value = valueOf(element);
    std::optional<AccessibilityTextSnapshot> snapshot;
    if (range && (!value || text::isBlank(*value)))
        snapshot = windowedValueOf(element, *range);
    if (snapshot)
        log_.line(tagged(QStringLiteral("Using fallback windowed value")));
    else if (value)
        snapshot = AccessibilityTextSnapshot{*std::move(value), range};
    if (!snapshot) {
        log_.line(tagged(QStringLiteral("No value string found, returning nil")));
        return std::nullopt;
    }
    if (snapshot->value.contains(platform::axEmbeddedObject)) {
        log_.line(tagged(QStringLiteral("The value has its text elsewhere, returning nil")));
        return std::nullopt;
    }
    snapshot->element = element;
    log_.line(tagged(QStringLiteral("Returning snapshot with a value")));
    return snapshot;
}

std::optional<text::Utf16Range> FocusedText::selectedRangeOf(const AXElement& element) {
    const auto value = accessibility_.copyAttribute(element, AXAttribute::SelectedTextRange);
    if (!value)
        return std::nullopt;
    const auto* range = std::get_if<text::Utf16Range>(&*value);
    if (!range || range->location == notFound)
        return std::nullopt;
    return *range;
}

std::optional<QString> FocusedText::valueOf(const AXElement& element) {
    const auto value = accessibility_.copyAttribute(element, AXAttribute::Value);
    log_.line(tagged(QStringLiteral("kAXValueAttribute result: %1")
                         .arg(platform::axErrorName(value ? platform::AXError::Success : value.error()))));
    if (!value || std::holds_alternative<std::monostate>(*value))
        return std::nullopt;
    if (const auto* string = std::get_if<QString>(&*value)) {
        log_.line(tagged(QStringLiteral("Got value string")));
        return *string;
    }
    if (const auto* attributed = std::get_if<platform::AXAttributedString>(&*value)) {
        log_.line(tagged(QStringLiteral("Got attributed string")));
        return attributed->plainText;
    }
    log_.line(tagged(QStringLiteral("Value object is not string type: ") + platform::axTypeName(*value)));
    return std::nullopt;
}

std::optional<AccessibilityTextSnapshot> FocusedText::windowedValueOf(const AXElement& element,
                                                                      text::Utf16Range selected) {
    const qint64 start = std::max<qint64>(selected.location - windowReach, 0);
    const qint64 length = std::max<qint64>(selected.length + 2 * windowReach, 1);
    const auto value =
        accessibility_.copyParameterizedAttribute(element, AXAttribute::AttributedStringForRange, {start, length});
    if (!value)
        return std::nullopt;
    const text::Utf16Range relative{std::max<qint64>(selected.location - start, 0), selected.length};
    if (const auto* attributed = std::get_if<platform::AXAttributedString>(&*value))
        return AccessibilityTextSnapshot{attributed->plainText, relative, std::nullopt, start};
    if (const auto* string = std::get_if<QString>(&*value))
        return AccessibilityTextSnapshot{*string, relative, std::nullopt, start};
    return std::nullopt;
}

}  // namespace tavrelon::capture
