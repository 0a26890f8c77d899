#include "desktop/wayland/clipboard/clipboard_types.h"

#include <algorithm>

namespace tavrelon::desktop {

namespace {

const QString utf8Plain = QStringLiteral("text/plain;charset=utf-8");
const QString plain = QStringLiteral("text/plain");
const QString latin1 = QStringLiteral("STRING");

/// In the order in which a reader should try them.
const QStringList& textTypes() {
    static const QStringList types{utf8Plain, QStringLiteral("UTF8_STRING"), plain, QStringLiteral("TEXT"), latin1};
    return types;
}

}  // namespace

std::optional<QString> textTypeAmong(const QStringList& types) {
    for (const auto& known : textTypes())
        for (const auto& type : types)
            if (type.compare(known, Qt::CaseInsensitive) == 0)
                return type;
    return std::nullopt;
}

bool isTextType(const QString& type) {
    return textTypes().contains(type, Qt::CaseInsensitive);
}

bool isPictureType(const QString& type) {
    return type.startsWith(QStringLiteral("image/"));
}

QString decodeClipboardText(const QString& type, const QByteArray& bytes) {
    const auto end = bytes.indexOf('\0');  // some owners add one
    const auto text = end < 0 ? bytes : bytes.first(end);
    const bool isUtf8 = type.compare(latin1, Qt::CaseInsensitive) != 0 && text.isValidUtf8();
    return isUtf8 ? QString::fromUtf8(text) : QString::fromLatin1(text);
}

platform::PasteboardItem withTextTypes(platform::PasteboardItem item) {
    const auto stored = std::ranges::find_if(item.dataByType, [](const auto& form) { return isTextType(form.first); });
    if (stored == item.dataByType.end())
        return item;
    const auto text = decodeClipboardText(stored->first, stored->second).toUtf8();
    for (const auto& name : {utf8Plain, plain})
        if (std::ranges::find(item.dataByType, name, [](const auto& form) { return form.first; }) ==
            item.dataByType.end())
            item.dataByType.emplace_back(name, text);
    return item;
}

platform::PasteboardItem textItem(const QString& text) {
    const auto bytes = text.toUtf8();
    return {.dataByType = {{utf8Plain, bytes}, {plain, bytes}}};
}

}  // namespace tavrelon::desktop
