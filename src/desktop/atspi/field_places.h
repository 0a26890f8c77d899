#pragma once

#include "desktop/atspi/atspi_calls.h"

namespace tavrelon::desktop::atspi {

/// What a field said of the places of its text and itself, on the screen. Absent where it gave an error.
struct ReportedPlaces {
    std::optional<platform::AXRect> frame;   ///< the field's own
    std::optional<platform::AXRect> text;    ///< of the range; of the character behind the caret for an empty one
    std::optional<platform::AXRect> before;  ///< of the character before the caret, on the same line
    std::optional<platform::AXRect> first;   ///< of the field's first character
    std::optional<platform::AXRect>
        linesBefore;  ///< of the first character behind the last line break before the range
};

/// The rectangle of a range, or of the caret. Absent where what was said cannot be right: a wrong place is worse than
/// none. `isBehindLineBreak` is whether a line break comes before the range.
std::optional<platform::AXRect> believableBounds(const ReportedPlaces& reported, bool isCaret, bool isBehindLineBreak);

/// Asks where fields and their texts are. Main thread; within the allowance of `calls`.
class FieldPlaces {
 public:
    FieldPlaces(AtspiCalls& calls, AtspiDirectory& directory) : calls_(calls), directory_(directory) {}

    std::expected<platform::AXRect, platform::AXError> frameOf(const ObjectReference& field);

    /// `range` is in UTF-16 units of `value`, the field's text. `NoValue` where the field's answer is not to be
    /// believed.
    std::expected<platform::AXRect, platform::AXError> boundsOf(const ObjectReference& field, const QString& value,
                                                                text::Utf16Range range);

 private:
    AtspiCalls& calls_;
    AtspiDirectory& directory_;
};

}  // namespace tavrelon::desktop::atspi
