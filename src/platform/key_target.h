#pragma once

#include <optional>

#include "platform/accessibility.h"

namespace tavrelon::platform {

/// Where keys go at one moment. The numbers and the element mean nothing but for comparing.
struct KeyTarget {
    quint64 windowIdentifier = 0;      ///< 0 where no window has the focus
    qint64 processIdentifier = 0;      ///< 0 where it is unknown
    std::optional<AXElement> element;  ///< absent where the application does not tell of an element that holds text
    bool operator==(const KeyTarget&) const = default;
};

}  // namespace tavrelon::platform
