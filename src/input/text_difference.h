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
    bool operator==(const TextDifference&) const = default;
};

/// The one changed stretch between two texts. Absent when either has more than `limit` user-perceived characters.
std::optional<TextDifference> textDifference(const QString& oldText, const QString& newText, qint64 limit);

/// The text around the caret: `radius` UTF-16 units before and after the end of the selection, or before the end of the
/// text when there is no selection. Absent when nothing is there.
std::optional<QString> caretWindow(const QString& text, std::optional<text::Utf16Range> selectedRange, qint64 radius);

/// What was inserted between two snapshots of a field, untrimmed; long fields are compared near the caret only. Absent
/// when nothing but white space was, or the fields cannot be compared.
std::optional<QString> insertedText(const capture::AccessibilityTextSnapshot& initial,
                                    const capture::AccessibilityTextSnapshot& current);

}  // namespace tavrelon::input
