#pragma once

#include <QString>
#include <optional>

#include "capture/captured_context.h"
#include "output/answer_place.h"
#include "scenes/replacement_strategy.h"

namespace tavrelon::input {

using capture::AccessibilityTextSnapshot;

/// What the user asked for, and how many characters of it stand in the field; the count is absent when the text was
/// not typed there.
struct RequestText {
    QString text;
    std::optional<qint64> deleteCount;
    bool isClean = false;                       ///< nothing else but the selection before changed in the field
    std::optional<output::FieldPlace> place{};  ///< where it stands in the field
    bool operator==(const RequestText&) const = default;
};

/// The trimmed text that is selected in the snapshot; absent when nothing or only white space is.
std::optional<QString> selectedTextOf(const std::optional<AccessibilityTextSnapshot>& snapshot);

/// Whether the whole field may be the request where nothing was typed and nothing selected.
enum class WholeField { Allowed, Forbidden };

/// The text of an input by the field alone: what was inserted, else the selection, else the whole field, unless that is
/// a long text or not the field in which the input began.
std::optional<QString> deriveInputText(const std::optional<AccessibilityTextSnapshot>& initial,
                                       const std::optional<AccessibilityTextSnapshot>& current,
                                       WholeField wholeField = WholeField::Allowed);

/// The text of a request: what was inserted, with its length; else the believed selection; else the selected range.
std::optional<RequestText> deriveRequestText(const std::optional<AccessibilityTextSnapshot>& current,
                                             const std::optional<QString>& selection,
                                             const std::optional<AccessibilityTextSnapshot>& initial);

/// How the answer takes the request's place.
scenes::ReplacementStrategy makeReplacementStrategy(const QString& text, const std::optional<QString>& selection,
                                                    std::optional<qint64> deleteCount);

/// Whether an input may teach the learner: raw letters of an unfinished composition must not.
bool shouldRecordInput(const QString& text, bool imeActive);

}  // namespace tavrelon::input
