#include "input/request_text.h"

#include "input/text_difference.h"

namespace tavrelon::input {

using Method = scenes::ReplacementStrategy::Method;

namespace {

/// Nobody means a longer text by two presses. In UTF-16 units.
constexpr qint64 longestWholeRequest = 20000;

qint64 selectedCount(const AccessibilityTextSnapshot& snapshot) {
    const auto selected = snapshot.selectedRange ? text::substring(snapshot.value, *snapshot.selectedRange) : QString();
    return selected ? text::characterCount(*selected) : 0;
}

}  // namespace

std::optional<QString> selectedTextOf(const std::optional<AccessibilityTextSnapshot>& snapshot) {
    if (!snapshot || !snapshot->selectedRange || snapshot->selectedRange->length < 1)
        return std::nullopt;
    const auto selected = text::substring(snapshot->value, *snapshot->selectedRange);
    return selected ? text::trimmedOrAbsent(*selected) : std::nullopt;
}

std::optional<QString> deriveInputText(const std::optional<AccessibilityTextSnapshot>& initial,
                                       const std::optional<AccessibilityTextSnapshot>& current, WholeField wholeField) {
    if (!current)
        return std::nullopt;
    if (initial)
        if (auto found = insertion(*initial, *current))
            return std::move(found->inserted);
    if (auto selected = selectedTextOf(current))
        return selected;
    const bool isOneField = !initial || initial->element == current->element;
    if (wholeField == WholeField::Allowed && isOneField && current->value.size() <= longestWholeRequest &&
        !text::isBlank(current->value))
        return current->value;
    return std::nullopt;
}

std::optional<RequestText> deriveRequestText(const std::optional<AccessibilityTextSnapshot>& current,
                                             const std::optional<QString>& selection,
                                             const std::optional<AccessibilityTextSnapshot>& initial) {
    if (initial && current)
        if (auto found = insertion(*initial, *current)) {
            RequestText request{std::move(found->inserted), {}, found->deleted == selectedCount(*initial)};
            request.deleteCount = text::characterCount(request.text);
            if (current->element)
                request.place = {*current->element, current->offset + found->at};
            return request;
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
