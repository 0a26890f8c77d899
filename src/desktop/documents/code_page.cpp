#include "desktop/documents/code_page.h"

#include <iconv.h>

#include <array>
#include <cerrno>

namespace tavrelon::desktop {

namespace {

/// A conversion to UTF-16 in this machine's order.
class Converter {
 public:
    explicit Converter(const char* charset)
        : handle_(::iconv_open(Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "UTF-16LE" : "UTF-16BE", charset)) {}
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() {
        if (*this)
            ::iconv_close(handle_);
    }
    explicit operator bool() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    QString decode(QByteArrayView bytes);

 private:
    /// Appends what one call gives, at most a block. Returns the error that stopped it, 0 for none.
    int step(char** input, std::size_t* left, QString& text);

    iconv_t handle_;
};

QString Converter::decode(QByteArrayView bytes) {
    QString text;
    auto* input = const_cast<char*>(bytes.data());  // iconv only reads there
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const int reason = step(&input, &left, text);
        if (reason != EILSEQ && reason != EINVAL)
            continue;
        text.append(QChar::ReplacementCharacter);
        ++input;
        --left;
    }
    step(nullptr, nullptr, text);  // a letter that a mark might have followed is held back until then
    return text;
}

int Converter::step(char** input, std::size_t* left, QString& text) {
    std::array<char16_t, 4096> block{};
    auto* output = reinterpret_cast<char*>(block.data());
    std::size_t space = sizeof(block);
    const bool stopped = ::iconv(handle_, input, left, &output, &space) == static_cast<std::size_t>(-1);
    const int reason = stopped ? errno : 0;
    text.append(QStringView(block.data(), static_cast<qsizetype>((sizeof(block) - space) / sizeof(char16_t))));
    return reason;
}

}  // namespace

std::optional<QString> decodeCharset(QByteArrayView bytes, const char* charset) {
    Converter converter(charset);
    if (!converter)
        return std::nullopt;
    return converter.decode(bytes);
}

QString decodeCodePage(QByteArrayView bytes, int codePage) {
    constexpr int macRoman = 10000;
    constexpr int utf8 = 65001;
    if (codePage == utf8)
        return QString::fromUtf8(bytes);
    const auto charset = codePage == macRoman ? QByteArray("MACINTOSH") : "CP" + QByteArray::number(codePage);
    if (auto text = decodeCharset(bytes, charset.constData()))
        return *std::move(text);
    return decodeCharset(bytes, "CP1252").value_or(QString::fromLatin1(bytes));
}

}  // namespace tavrelon::desktop
