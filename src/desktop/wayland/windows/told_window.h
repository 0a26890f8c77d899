#pragma once

#include <QString>
#include <optional>

#include "platform/workspace.h"
#include "text/json.h"

namespace tavrelon::desktop {

/// A window as our script within a compositor tells it. Texts are empty and numbers 0 where it says nothing.
struct ToldWindow {
    QString identifier;  ///< the compositor's own, for as long as the window is there
    qint64 processIdentifier = 0;
    QString applicationId;  ///< of a native window
    QString windowClass;
    QString windowInstance;
    QString title;
    platform::WindowPlace place;  ///< without what the compositor puts around it, in logical pixels
    bool operator==(const ToldWindow&) const = default;

    /// The name by which the tables of applications know it.
    const QString& name() const { return applicationId.isEmpty() ? windowClass : applicationId; }
};

/// What the script has told. Throws `text::JsonError` where it is something else.
ToldWindow windowIn(const text::Json& told);

}  // namespace tavrelon::desktop
