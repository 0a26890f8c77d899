#pragma once

#include "desktop/atspi/atspi_calls.h"
#include "platform/workspace.h"

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

/// Where on the screen an application counts from that tells places within its window only: its window in front is at
/// `place`, and `frames` are what it says of the extents of its windows. Absent where no window of it is of that size.
/// Around what it counts lies its shadow, or a border of equal width on all sides where no shadow can be drawn.
std::optional<platform::AXPoint> originOfWindow(const platform::WindowPlace& place,
                                                const std::vector<platform::AXRect>& frames);

/// Whether an application that tells places on the screen knows where its window is: one of `frames`, with or without
/// what the window manager puts around it, covers the window in front. One that tells no frames is believed.
bool knowsPlaceOfWindow(const platform::WindowPlace& place, const std::vector<platform::AXRect>& frames);

/// Asks where fields and their texts are. Main thread; within the allowance of `calls`.
class FieldPlaces {
 public:
    FieldPlaces(AtspiCalls& calls, AtspiDirectory& directory, platform::Workspace& workspace)
        : calls_(calls), directory_(directory), workspace_(workspace) {}

    std::expected<platform::AXRect, platform::AXError> frameOf(const ObjectReference& field);

    /// `range` is in UTF-16 units of `value`, the field's text. `NoValue` where the field's answer is not to be
    /// believed.
    std::expected<platform::AXRect, platform::AXError> boundsOf(const ObjectReference& field, const QString& value,
                                                                text::Utf16Range range);

 private:
    /// In what to ask for places, by what to divide them and then what to add to them.
    struct Coordinates {
        quint32 kind;
        platform::AXPoint origin;
        double fieldScale;
        double textScale;
    };
    std::expected<Coordinates, platform::AXError> coordinatesOf(const QString& busName, const Toolkit& toolkit);
    std::expected<std::vector<platform::AXRect>, platform::AXError> windowsOf(const QString& busName,
                                                                              quint32 coordinates);

    AtspiCalls& calls_;
    AtspiDirectory& directory_;
    platform::Workspace& workspace_;
};

}  // namespace tavrelon::desktop::atspi
