#pragma once

#include <optional>

#include "platform/accessibility.h"

namespace tavrelon::capture {

/// Finds the place where the user writes. Main thread; blocks for as long as the accessibility reads take, which the
/// port bounds. It has no effect and writes no log line.
class CursorLocator {
 public:
    explicit CursorLocator(platform::Accessibility& accessibility) : accessibility_(accessibility) {}

    /// The rectangle of the caret or the selection, else of the whole focused element; absent where neither is told. In
    /// pixels from the upper left corner of the screen.
    std::optional<platform::AXRect> caretRect();

 private:
    std::optional<platform::AXElement> focusedElement();
    std::optional<platform::AXRect> textBounds(const platform::AXElement& element);
    std::optional<platform::AXRect> elementFrame(const platform::AXElement& element);

    platform::Accessibility& accessibility_;
};

}  // namespace tavrelon::capture
