// The text of the focused field: ContextCapturer's snapshot and its fall-backs.
#include "capture/context_capturer.h"
#include "text/characters.h"

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

std::optional<AccessibilityTextSnapshot> ContextCapturer::fetchFocusedTextSnapshot() {
    const bool trusted = platform_.accessibility.isProcessTrusted();
    if (!trusted)
        return std::nullopt;
    platform_.log.line(tagged(QStringLiteral("fetchFocusedTextSnapshot called, AXIsProcessTrusted: true")));
    const auto element = reader_.focusedElement();
    if (!element)
        return std::nullopt;
    return snapshotOf(*element);
}

std::optional<AccessibilityTextSnapshot> ContextCapturer::snapshotOf(const AXElement& element) {
    auto& log = platform_.log;
    const auto range = selectedRangeOf(element);
    auto value = valueOf(element);
    std::optional<AccessibilityTextSnapshot> snapshot;
    if (range && (!value || text::isBlank(*value)))
        snapshot = windowedValueOf(element, *range);
    if (snapshot)
        log.line(tagged(QStringLiteral("Using fallback windowed value")));
    else if (value)
        snapshot = AccessibilityTextSnapshot{*std::move(value), range};
    if (!snapshot) {
        log.line(tagged(QStringLiteral("No value string found, returning nil")));
        return std::nullopt;
    }
    if (snapshot->value.contains(platform::axEmbeddedObject)) {
        log.line(tagged(QStringLiteral("The value has its text elsewhere, returning nil")));
        return std::nullopt;
    }
    snapshot->element = element;
    log.line(tagged(QStringLiteral("Returning snapshot with a value")));
    return snapshot;
}

std::optional<text::Utf16Range> ContextCapturer::selectedRangeOf(const AXElement& element) {
    const auto value = platform_.accessibility.copyAttribute(element, AXAttribute::SelectedTextRange);
    if (!value)
        return std::nullopt;
    const auto* range = std::get_if<text::Utf16Range>(&*value);
    if (!range || range->location == notFound)
        return std::nullopt;
    return *range;
}

std::optional<QString> ContextCapturer::valueOf(const AXElement& element) {
    auto& log = platform_.log;
    const auto value = platform_.accessibility.copyAttribute(element, AXAttribute::Value);
    log.line(tagged(QStringLiteral("kAXValueAttribute result: %1")
                        .arg(platform::axErrorName(value ? platform::AXError::Success : value.error()))));
    if (!value || std::holds_alternative<std::monostate>(*value))
        return std::nullopt;
    if (const auto* string = std::get_if<QString>(&*value)) {
        log.line(tagged(QStringLiteral("Got value string")));
        return *string;
    }
    if (const auto* attributed = std::get_if<platform::AXAttributedString>(&*value)) {
        log.line(tagged(QStringLiteral("Got attributed string")));
        return attributed->plainText;
    }
    log.line(tagged(QStringLiteral("Value object is not string type: ") + platform::axTypeName(*value)));
    return std::nullopt;
}

std::optional<AccessibilityTextSnapshot> ContextCapturer::windowedValueOf(const AXElement& element,
                                                                          text::Utf16Range selected) {
    const qint64 start = std::max<qint64>(selected.location - windowReach, 0);
    const qint64 length = std::max<qint64>(selected.length + 2 * windowReach, 1);
    const auto value = platform_.accessibility.copyParameterizedAttribute(
        element, AXAttribute::AttributedStringForRange, {start, length});
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
