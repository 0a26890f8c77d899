#include "input/text_difference.h"

#include <algorithm>

namespace tavrelon::input {

namespace {

/// Fields longer than this (in characters) are compared near the caret only, so that a press never waits for a book.
constexpr qint64 wholeFieldLimit = 20000;
/// How far the compared windows reach around the caret, in UTF-16 units, and how long they may be, in characters.
constexpr qint64 windowRadius = 1600;
constexpr qint64 windowLimit = 4000;

}  // namespace

std::optional<TextDifference> textDifference(const QString& oldText, const QString& newText, qint64 limit) {
    const auto oldCharacters = text::characters(oldText);
    const auto newCharacters = text::characters(newText);
    const auto oldCount = std::ssize(oldCharacters);
    const auto newCount = std::ssize(newCharacters);
    if (oldCount > limit || newCount > limit)
        return std::nullopt;
    const auto start = std::ranges::mismatch(oldCharacters, newCharacters);
    const auto prefix = start.in1 - oldCharacters.begin();
    // Only what the prefix left may count as the common end, so that the two never overlap.
    const auto longestSuffix = std::min(oldCount, newCount) - prefix;
    const auto end =
        std::mismatch(oldCharacters.rbegin(), oldCharacters.rbegin() + longestSuffix, newCharacters.rbegin());
    const auto suffix = end.first - oldCharacters.rbegin();

    TextDifference difference;
    difference.deleted = oldCount - prefix - suffix;
    for (auto i = prefix; i < newCount - suffix; ++i)
        difference.inserted += newCharacters[static_cast<std::size_t>(i)];
    return difference;
}

std::optional<QString> caretWindow(const QString& text, std::optional<text::Utf16Range> selectedRange, qint64 radius) {
    const qint64 length = text.size();
    if (length == 0 || radius < 1)
        return std::nullopt;
    qint64 caret = length;
    if (selectedRange) {
        const auto location = std::clamp<qint64>(selectedRange->location, 0, length);
        caret = std::clamp<qint64>(location + std::clamp<qint64>(selectedRange->length, 0, length), 0, length);
    }
    const auto start = std::max<qint64>(caret - radius, 0);
    const auto end = std::min(caret > length - radius ? length : caret + radius, length);
    if (start >= end)
        return std::nullopt;
    return text.sliced(start, end - start);
}

std::optional<QString> insertedText(const capture::AccessibilityTextSnapshot& initial,
                                    const capture::AccessibilityTextSnapshot& current) {
    auto difference = textDifference(initial.value, current.value, wholeFieldLimit);
    if (!difference) {
        const auto oldWindow = caretWindow(initial.value, initial.selectedRange, windowRadius);
        const auto newWindow = caretWindow(current.value, current.selectedRange, windowRadius);
        if (oldWindow && newWindow)
            difference = textDifference(*oldWindow, *newWindow, windowLimit);
    }
    if (!difference || text::isBlank(difference->inserted))
        return std::nullopt;
    return std::move(difference->inserted);
}

}  // namespace tavrelon::input
