#pragma once

#include <QByteArray>
#include <optional>

namespace tavrelon::desktop {

/// The whole number that the XSETTINGS document of a desktop gives for `name`, as "Gtk/EnableAnimations". Absent where
/// it gives none, and for a document that is none. Pure.
std::optional<qint32> xSetting(const QByteArray& document, QByteArrayView name);

}  // namespace tavrelon::desktop
