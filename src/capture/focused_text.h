#pragma once

#include "capture/captured_context.h"
#include "platform/log.h"

namespace tavrelon::capture {

/// Reads the text of a field with its selection, or a stretch around the selection where the whole is not told. Main
/// thread; nothing throws.
class FocusedText {
 public:
    FocusedText(platform::Log& log, platform::Accessibility& accessibility)
        : log_(log), accessibility_(accessibility) {}

    /// Absent where the field tells no text, and where that lies in elements of its own.
    std::optional<AccessibilityTextSnapshot> snapshotOf(const platform::AXElement& element);

 private:
    std::optional<text::Utf16Range> selectedRangeOf(const platform::AXElement& element);
    std::optional<QString> valueOf(const platform::AXElement& element);
    std::optional<AccessibilityTextSnapshot> windowedValueOf(const platform::AXElement& element,
                                                             text::Utf16Range selected);

    platform::Log& log_;
    platform::Accessibility& accessibility_;
};

}  // namespace tavrelon::capture
