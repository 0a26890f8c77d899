#include "desktop/documents/html_charset.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <algorithm>
#include <array>

#include "desktop/documents/code_page.h"

namespace tavrelon::desktop {

namespace {

constexpr qsizetype declarationReach = 4096;  // bytes

/// Names in use on the web and what the converter calls them. No other name reaches the converter.
struct Charset {
    const char* name;
    const char* converter;
};
constexpr std::array charsets{
    Charset{"windows-1250", "CP1250"},   Charset{"windows-1251", "CP1251"},
    Charset{"windows-1252", "CP1252"},   Charset{"windows-1253", "CP1253"},
    Charset{"windows-1254", "CP1254"},   Charset{"windows-1255", "CP1255"},
    Charset{"windows-1256", "CP1256"},   Charset{"windows-1257", "CP1257"},
    Charset{"windows-1258", "CP1258"},   Charset{"iso-8859-1", "CP1252"},
    Charset{"us-ascii", "CP1252"},       Charset{"iso-8859-2", "ISO-8859-2"},
    Charset{"iso-8859-5", "ISO-8859-5"}, Charset{"iso-8859-7", "ISO-8859-7"},
    Charset{"iso-8859-9", "CP1254"},     Charset{"iso-8859-15", "ISO-8859-15"},
    Charset{"koi8-r", "KOI8-R"},         Charset{"koi8-u", "KOI8-U"},
    Charset{"gb2312", "GB18030"},        Charset{"gbk", "GB18030"},
    Charset{"gb18030", "GB18030"},       Charset{"big5", "CP950"},
    Charset{"shift_jis", "CP932"},       Charset{"euc-jp", "EUC-JP"},
    Charset{"euc-kr", "CP949"},
};

const char* declaredConverter(QByteArrayView bytes) {
    static const QRegularExpression declaration(QStringLiteral("charset\\s*=\\s*[\"']?\\s*([A-Za-z0-9_-]+)"),
                                                QRegularExpression::CaseInsensitiveOption);
    const auto head = QString::fromLatin1(bytes.first(std::min(declarationReach, bytes.size())));
    const auto name = declaration.match(head).captured(1).toLower();
    const auto found =
        std::ranges::find_if(charsets, [&](const Charset& one) { return name == QLatin1StringView(one.name); });
    return found == charsets.end() ? nullptr : found->converter;
}

}  // namespace

QString htmlMarkup(QByteArrayView bytes) {
    if (const auto marked = QStringConverter::encodingForData(bytes)) {
        QStringDecoder decoder(*marked);
        return decoder(bytes);
    }
    const char* converter = declaredConverter(bytes);
    if (!converter && bytes.isValidUtf8())
        return QString::fromUtf8(bytes);
    return decodeCharset(bytes, converter ? converter : "CP1252").value_or(QString::fromLatin1(bytes));
}

}  // namespace tavrelon::desktop
