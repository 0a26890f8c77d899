#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "platform/accessibility.h"
#include "text/characters.h"

namespace tavrelon::capture {

/// The text of the focused field as it was at one moment.
struct AccessibilityTextSnapshot {
    QString value;                                    ///< the whole text, or a window of it
    std::optional<text::Utf16Range> selectedRange{};  ///< relative to `value`; absent if the element reported none
    std::optional<platform::AXElement> element{};     ///< the field
    qint64 offset = 0;                                ///< where `value` begins in the field's text, in UTF-16 units
    bool operator==(const AccessibilityTextSnapshot&) const = default;
};

/// What the user was looking at when a request was made.
struct CapturedContext {
    QString inputBuffer;  ///< what the user typed or said; the caller supplies it
    std::optional<QString> appBundleID;
    std::optional<QString> appName;
    std::optional<QString> windowTitle;
    std::optional<QByteArray> screenshotData;  ///< JPEG
    std::optional<QString> selection;
    bool operator==(const CapturedContext&) const = default;
};

}  // namespace tavrelon::capture
