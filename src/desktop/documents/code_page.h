#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

namespace tavrelon::desktop {

/// The text of bytes in an encoding by its name, such as "CP1251"; what is no text there becomes U+FFFD. Absent when
/// the encoding is not known.
std::optional<QString> decodeCharset(QByteArrayView bytes, const char* charset);

/// The same by the number of a Windows code page; one that is not known counts as 1252.
QString decodeCodePage(QByteArrayView bytes, int codePage);

}  // namespace tavrelon::desktop
