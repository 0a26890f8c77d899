#pragma once

#include <QString>
#include <optional>

#include "platform/workspace.h"

namespace tavrelon::desktop {

/// A window as the script within KWin tells it. Texts are empty and numbers 0 where it says nothing.
struct KWinWindow {
    QString identifier;  ///< KWin's own, for as long as the window is there
    qint64 processIdentifier = 0;
    QString applicationId;  ///< of a native window
    QString windowClass;
    QString windowInstance;
    QString title;
    platform::WindowPlace place;  ///< without what KWin puts around it, in logical pixels
    bool operator==(const KWinWindow&) const = default;

    /// The name by which the tables of applications know it.
    const QString& name() const { return applicationId.isEmpty() ? windowClass : applicationId; }
};

/// What the script has told; absent where no window is in front. Throws `text::JsonError` where it is something else.
std::optional<KWinWindow> windowIn(const QString& told);

}  // namespace tavrelon::desktop
