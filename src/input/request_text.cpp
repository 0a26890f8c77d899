#include "input/request_text.h"

#include "input/text_difference.h"

namespace tavrelon::input {

using Method = scenes::ReplacementStrategy::Method;

std::optional<QString> selectedTextOf(const std::optional<AccessibilityTextSnapshot>& snapshot) {
    if (!snapshot || !snapshot->selectedRange || snapshot->selectedRange->length < 1)
        return std::nullopt;
    const auto selected = text::substring(snapshot->value, *snapshot->selectedRange);
    return selected ? text::trimmedOrAbsent(*selected) : std::nullopt;
}

std::optional<QString> deriveInputText(const std::optional<AccessibilityTextSnapshot>& initial,
                                       const std::optional<AccessibilityTextSnapshot>& current) {
    if (!current)
        return std::nullopt;
    if (initial)
        if (auto inserted = insertedText(*initial, *current))
            return inserted;
    if (auto selected = selectedTextOf(current))
        return selected;
    if (!text::isBlank(current->value))
        return current->value;
    return std::nullopt;
}

std::optional<RequestText> deriveRequestText(const std::optional<AccessibilityTextSnapshot>& current,
                                             const std::optional<QString>& selection,
                                             const std::optional<AccessibilityTextSnapshot>& initial) {
    if (initial && current)
        if (auto inserted = insertedText(*initial, *current)) {
            const auto count = text::characterCount(*inserted);
            return RequestText{*std::move(inserted), count};
        }
    if (selection)
        if (auto trimmed = text::trimmedOrAbsent(*selection))
            return RequestText{*std::move(trimmed), std::nullopt};
    if (auto selected = selectedTextOf(current))
        return RequestText{*std::move(selected), std::nullopt};
    return std::nullopt;
}

scenes::ReplacementStrategy makeReplacementStrategy(const QString& text, const std::optional<QString>& selection,
                                                    std::optional<qint64> deleteCount) {
    if (selection && !selection->isEmpty())
        return {Method::replaceSelection, std::nullopt};
    return {Method::deleteChars, deleteCount ? *deleteCount : text::characterCount(text)};
}

bool shouldRecordInput(const QString& text, bool imeActive) {
    const auto trimmed = text::trimmed(text);
    if (trimmed.isEmpty())
        return false;
    return !imeActive || !text::isASCIIOnly(trimmed);
}

}  // namespace tavrelon::input
