#pragma once

#include <QRect>
#include <QString>
#include <optional>
#include <vector>

#include "platform/workspace.h"
#include "text/json.h"

namespace tavrelon::desktop {

/// A window in sway's tree. Texts are empty and numbers 0 where it says nothing.
struct SwayWindow {
    quint64 identifier = 0;  ///< sway's own, for as long as the window is there
    qint64 processIdentifier = 0;
    QString applicationId;  ///< of a native window
    QString windowClass;    ///< of an X11 window
    QString windowInstance;
    std::optional<QString> title;
    platform::WindowPlace place;  ///< without sway's borders, in logical pixels
    bool isFocused = false;
    bool isVisible = false;
    bool operator==(const SwayWindow&) const = default;

    /// The name by which the tables of applications know it.
    const QString& name() const { return applicationId.isEmpty() ? windowClass : applicationId; }
};

/// A display that is on.
struct SwayOutput {
    QString name;
    QRect area;  ///< in logical pixels of the desktop
    double scale = 1;
    bool isFocused = false;
    bool operator==(const SwayOutput&) const = default;
};

/// Those of the answer to `GetOutputs` that are on. Throws `text::JsonError` where it is none.
std::vector<SwayOutput> outputsOf(const text::Json& answer);

/// All windows of the answer to `GetTree`, in no order. Throws `text::JsonError` where it is no tree.
std::vector<SwayWindow> windowsOf(const text::Json& tree);

}  // namespace tavrelon::desktop
