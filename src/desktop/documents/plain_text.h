#pragma once

#include <QByteArrayView>
#include <QString>

namespace tavrelon::desktop {

/// The text of a file without a format, in the first encoding that fits: UTF-8; UTF-16 by its mark, or in this
/// machine's order; UTF-16 with the low byte first; with the high byte first; ISO Latin 1. Bytes with a null character
/// are no text in UTF-8 or Latin 1 letters but in UTF-16, whose letters are full of them. A mark is not part of the
/// text.
QString plainText(QByteArrayView bytes);

}  // namespace tavrelon::desktop
