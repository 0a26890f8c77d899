#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

namespace tavrelon::desktop {

/// The plain text of an RTF document, of which no more is read once there are `enough` UTF-16 units. Headers, footers,
/// notes, hidden text and the instructions of fields are no part of it. A document that breaks off, or closes groups
/// that it never opened, gives what was read up to there. Absent when the bytes do not begin as RTF, or are nested
/// beyond reason.
std::optional<QString> rtfText(QByteArrayView bytes, qsizetype enough);

}  // namespace tavrelon::desktop
