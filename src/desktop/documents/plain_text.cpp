#include "desktop/documents/plain_text.h"

#include <QStringDecoder>
#include <optional>

namespace tavrelon::desktop {

namespace {

std::optional<QString> decoded(QByteArrayView bytes, QStringConverter::Encoding encoding) {
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError() || !text.isValidUtf16() || text.contains(QChar::Null))
        return std::nullopt;
    return text;
}

}  // namespace

QString plainText(QByteArrayView bytes) {
    using enum QStringConverter::Encoding;
    for (const auto encoding : {Utf8, Utf16, Utf16LE, Utf16BE}) {
        const bool wholeUnits = encoding == Utf8 || bytes.size() % 2 == 0;
        if (auto text = wholeUnits ? decoded(bytes, encoding) : std::nullopt)
            return *std::move(text);
    }
    return QString::fromLatin1(bytes);
}

}  // namespace tavrelon::desktop
