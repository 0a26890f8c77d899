#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

#include "platform/pasteboard.h"

/// What Wayland clients call the forms of a clipboard. Any thread.
namespace tavrelon::desktop {

/// The best of these types to read a text by; absent where none is a text.
std::optional<QString> textTypeAmong(const QStringList& types);

bool isTextType(const QString& type);
bool isPictureType(const QString& type);

QString decodeClipboardText(const QString& type, const QByteArray& bytes);

/// The item with the names of its text by which native clients and those of X ask for it.
platform::PasteboardItem withTextTypes(platform::PasteboardItem item);
platform::PasteboardItem textItem(const QString& text);

}  // namespace tavrelon::desktop
