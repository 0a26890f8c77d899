#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace tavrelon::desktop {

/// The text of all pages that have some, each followed by a line end; no further page is opened once there are
/// `enough` UTF-16 units of it. Absent when the bytes are no PDF or need a password.
std::optional<QString> pdfText(const QByteArray& bytes, qsizetype enough);

}  // namespace tavrelon::desktop
