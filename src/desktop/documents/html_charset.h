#pragma once

#include <QByteArrayView>
#include <QString>

namespace tavrelon::desktop {

/// The markup of an HTML file: decoded by its byte order mark, else by the encoding that it names in its beginning,
/// else as UTF-8 if it is that, else as Windows code page 1252.
QString htmlMarkup(QByteArrayView bytes);

}  // namespace tavrelon::desktop
