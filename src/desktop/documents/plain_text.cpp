#include "desktop/documents/plain_text.h"

#include <QStringDecoder>
#include <optional>

#include "desktop/documents/code_page.h"

namespace tavrelon::desktop {

namespace {

std::optional<QString> decoded(QByteArrayView bytes, QStringConverter::Encoding encoding) {
    if (encoding != QStringConverter::Utf8 && bytes.size() % 2 != 0)
        return std::nullopt;
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    return decoder.hasError() || !text.isValidUtf16() ? std::nullopt : std::optional(text);
}

std::optional<QString> decodedByMark(QByteArrayView bytes) {
    const auto mark = QStringConverter::encodingForData(bytes);
    return mark ? decoded(bytes, *mark) : std::nullopt;
}

/// ASCII letters have a null byte each there, in the second place or in the first.
std::optional<QString> utf16WithoutMark(QByteArrayView bytes) {
    qsizetype nulls[2] = {};
    for (qsizetype i = 0; i < bytes.size(); ++i)
        nulls[i % 2] += bytes[i] == 0 ? 1 : 0;
    constexpr qsizetype share = 16;  // a stray null byte in a text of one byte each is rarer
    if ((nulls[0] + nulls[1]) * share < bytes.size() || bytes.isEmpty())
        return std::nullopt;
    return decoded(bytes, nulls[1] >= nulls[0] ? QStringConverter::Utf16LE : QStringConverter::Utf16BE);
}

/// Half of all byte pairs are characters of GB18030, an accented letter and its neighbour in code page 1252 too; but
/// what people write lies nearly all where both bytes are above A0.
std::optional<QString> gb18030(QByteArrayView bytes) {
    qsizetype common = 0;
    qsizetype rare = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (static_cast<uchar>(bytes[i]) < 0x80)
            continue;
        const bool isCommon =
            static_cast<uchar>(bytes[i]) > 0xa0 && i + 1 < bytes.size() && static_cast<uchar>(bytes[i + 1]) > 0xa0;
        ++(isCommon ? common : rare);
        ++i;
    }
    constexpr qsizetype mostlyCommon = 9;
    if (common < rare * mostlyCommon)
        return std::nullopt;
    auto text = decodeCharset(bytes, "GB18030");
    return text && !text->contains(QChar::ReplacementCharacter) ? text : std::nullopt;
}

}  // namespace

QString plainText(QByteArrayView bytes) {
    auto text = decodedByMark(bytes);
    if (!text)
        text = utf16WithoutMark(bytes);
    if (!text)
        text = decoded(bytes, QStringConverter::Utf8);
    if (!text)
        text = gb18030(bytes);
    if (!text)
        text = decodeCodePage(bytes, 1252);
    return text->remove(QChar::Null);
}

}  // namespace tavrelon::desktop
