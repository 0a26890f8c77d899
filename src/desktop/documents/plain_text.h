#pragma once

#include <QByteArrayView>
#include <QString>

namespace tavrelon::desktop {

/// The text of a file without a format, in the first encoding that fits: by its byte order mark; UTF-16 without one,
/// where every other byte or so is null; UTF-8; GB18030 where nearly all beyond ASCII are the characters that people
/// write; Windows code page 1252. A mark and stray null characters are not part of the text.
QString plainText(QByteArrayView bytes);

}  // namespace tavrelon::desktop
