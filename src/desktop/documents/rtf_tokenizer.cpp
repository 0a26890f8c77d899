#include "desktop/documents/rtf_tokenizer.h"

#include <algorithm>
#include <charconv>

namespace tavrelon::desktop {

namespace {

using Kind = RtfToken::Kind;

/// No keyword is as long; what is longer is no RTF and means nothing.
constexpr qsizetype longestWord = 64;
constexpr qsizetype longestNumber = 11;

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::optional<int> hexDigit(char c) {
    int value = 0;
    const auto read = std::from_chars(&c, &c + 1, value, 16);
    return read.ec == std::errc() ? std::optional(value) : std::nullopt;
}

}  // namespace

RtfToken RtfTokenizer::next() {
    while (!atEnd()) {
        const char c = bytes_[position_++];
        switch (c) {
            case '{':
                return {Kind::GroupStart};
            case '}':
                return {Kind::GroupEnd};
            case '\\':
                return control();
            case '\r':
            case '\n':
                continue;
            default:
                return {.kind = Kind::Byte, .byte = c};
        }
    }
    return {};
}

RtfToken RtfTokenizer::control() {
    if (atEnd())
        return {};
    if (isLetter(bytes_[position_]))
        return controlWord();
    const char symbol = bytes_[position_++];
    switch (symbol) {
        case '\'':
            return hexByte();
        case '\\':
        case '{':
        case '}':
            return {.kind = Kind::Byte, .byte = symbol};
        default:
            return {.kind = Kind::Symbol, .byte = symbol};
    }
}

RtfToken RtfTokenizer::controlWord() {
    const auto rest = bytes_.sliced(position_);
    const auto length = std::ranges::find_if_not(rest, isLetter) - rest.begin();
    position_ += length;
    RtfToken token{
        .kind = Kind::Word, .word = rest.first(std::min<qsizetype>(length, longestWord)), .parameter = parameter()};
    if (!atEnd() && bytes_[position_] == ' ')
        ++position_;
    if (token.word == QByteArrayView("bin"))  // raw data follows
        position_ += std::clamp<qsizetype>(token.parameter.value_or(0), 0, bytes_.size() - position_);
    return token;
}

std::optional<int> RtfTokenizer::parameter() {
    const auto start = position_;
    if (!atEnd() && bytes_[position_] == '-')
        ++position_;
    const auto digits = position_;
    while (!atEnd() && isDigit(bytes_[position_]))
        ++position_;
    if (position_ == digits) {  // a hyphen alone is text
        position_ = start;
        return std::nullopt;
    }
    const auto number = bytes_.sliced(start, std::min(position_ - start, longestNumber));
    int value = 0;
    std::from_chars(number.begin(), number.end(), value);  // 0 where it does not fit
    return value;
}

RtfToken RtfTokenizer::hexByte() {
    const auto digit = [this](qsizetype ahead) {
        return position_ + ahead < bytes_.size() ? hexDigit(bytes_[position_ + ahead]) : std::nullopt;
    };
    const auto high = digit(0);
    const auto low = digit(1);
    if (!high || !low)
        return {.kind = Kind::Symbol, .byte = '\''};
    position_ += 2;
    return {.kind = Kind::Byte, .byte = static_cast<char>(*high * 16 + *low)};
}

}  // namespace tavrelon::desktop
