#pragma once

#include <QString>
#include <optional>

#include "capture/captured_context.h"
#include "text/characters.h"

namespace tavrelon::input {

/// What has to be removed from the old text and inserted to get the new one.
struct TextDifference {
    QString inserted;
    qint64 deleted = 0;  ///< in user-perceived characters
    qint64 at = 0;       ///< where the inserted text begins in the new text, in UTF-16 units
    bool operator==(const TextDifference&) const = default;
};

/// Where the user typed, as far as it is known: the selection before, which typing replaces, and the caret after. In
/// UTF-16 units.
struct TypingAnchors {
    std::optional<text::Utf16Range> selectionBefore;
    std::optional<qint64> caretAfter;
};

/// The one changed stretch between two texts of any length. Where several stretches would explain the change, as when
/// "the " is typed before "then", the one that was typed at the anchors; without anchors the last one.
TextDifference textDifference(const QString& oldText, const QString& newText, const TypingAnchors& anchors = {});

/// The text around the caret: `radius` UTF-16 units before and after the end of the selection, or before the end of the
/// text when there is no selection. Absent when nothing is there.
std::optional<QString> caretWindow(const QString& text, std::optional<text::Utf16Range> selectedRange, qint64 radius);

/// What was inserted between two snapshots of a field, untrimmed. Absent when nothing but white space was, or when the
/// snapshots are not of one field.
std::optional<TextDifference> insertion(const capture::AccessibilityTextSnapshot& initial,
                                        const capture::AccessibilityTextSnapshot& current);

}  // namespace tavrelon::input
