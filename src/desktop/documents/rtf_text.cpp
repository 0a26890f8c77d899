#include "desktop/documents/rtf_text.h"

#include <algorithm>
#include <array>
#include <vector>

#include "desktop/documents/code_page.h"
#include "desktop/documents/rtf_fonts.h"
#include "desktop/documents/rtf_words.h"

namespace tavrelon::desktop {

namespace {

using Kind = RtfToken::Kind;

constexpr std::size_t deepestNesting = 10'000;

/// What holds within a group and comes back at its end.
struct Group {
    enum class Destination : std::uint8_t { Text, FontTable, Skipped };

    Destination destination = Destination::Text;
    bool hidden = false;
    bool starred = false;  ///< an unknown destination that follows is to be skipped
    int codePage = 1252;
    int fallbackLength = 1;  ///< what stands behind each \u for readers that do not know it
};

/// Follows an RTF document and collects its text.
class Reader {
 public:
    Reader(QByteArrayView bytes, qsizetype enough) : tokenizer_(bytes), enough_(enough) {}

    std::optional<QString> read();

 private:
    bool take(const RtfToken& token);
    bool openGroup();
    bool closeGroup();
    void takeWord(const RtfToken& token);
    void takeFormatting(const RtfToken& token);
    void takeSymbol(char symbol);
    void takeByte(char byte);
    void takeUnicode(int value);
    bool skipsFallback(const RtfToken& token);
    void append(QStringView text);
    void decodeBytes();
    bool showsText() const { return group_.destination == Group::Destination::Text && !group_.hidden; }

    RtfTokenizer tokenizer_;
    qsizetype enough_;
    Group group_;
    std::vector<Group> outer_;
    RtfFonts fonts_;
    int documentCodePage_ = 1252;
    int defaultFont_ = 0;
    int fallbackLeft_ = 0;  ///< what is still to be skipped behind a \u
    QByteArray bytes_;      ///< text in the group's code page; a character may take several
    QString text_;
};

std::optional<QString> Reader::read() {
    if (tokenizer_.next().kind != Kind::GroupStart)
        return std::nullopt;
    if (const auto first = tokenizer_.next(); first.kind != Kind::Word || first.word != "rtf")
        return std::nullopt;
    outer_.push_back(group_);
    while (!outer_.empty() && text_.size() + bytes_.size() < enough_) {
        const auto token = tokenizer_.next();
        if (token.kind == Kind::End)
            break;
        if (!take(token))
            return std::nullopt;
    }
    decodeBytes();
    return text_;
}

bool Reader::take(const RtfToken& token) {
    if (token.kind != Kind::Byte)
        decodeBytes();
    if (skipsFallback(token))
        return true;
    switch (token.kind) {
        case Kind::GroupStart:
            return openGroup();
        case Kind::GroupEnd:
            return closeGroup();
        case Kind::Word:
            takeWord(token);
            break;
        case Kind::Symbol:
            takeSymbol(token.byte);
            break;
        case Kind::Byte:
            takeByte(token.byte);
            break;
        case Kind::End:
            break;
    }
    return true;
}

bool Reader::openGroup() {
    if (outer_.size() >= deepestNesting)
        return false;
    outer_.push_back(group_);
    group_.starred = false;
    return true;
}

bool Reader::closeGroup() {
    group_ = outer_.back();
    outer_.pop_back();
    return true;
}

/// A \u is followed by so many bytes, words or symbols for older readers. A group's edge ends them.
bool Reader::skipsFallback(const RtfToken& token) {
    if (fallbackLeft_ == 0)
        return false;
    const bool edge = token.kind == Kind::GroupStart || token.kind == Kind::GroupEnd;
    fallbackLeft_ = edge ? 0 : fallbackLeft_ - 1;
    return !edge;
}

void Reader::takeWord(const RtfToken& token) {
    if (group_.destination == Group::Destination::FontTable)
        fonts_.takeTableWord(token);
    if (group_.destination != Group::Destination::Text)
        return;
    const auto text = rtf_words::textOf(token.word);
    const bool isUnderstood = text || token.word == "u";
    if (token.word == "fonttbl") {
        group_.destination = Group::Destination::FontTable;
    } else if (rtf_words::isSkippedDestination(token.word) || (group_.starred && !isUnderstood)) {
        group_.destination = Group::Destination::Skipped;
    } else if (text) {
        append(*text);
    } else if (token.word == "u") {
        takeUnicode(token.parameter.value_or(0));
    } else {
        takeFormatting(token);
    }
    group_.starred = false;
}

void Reader::takeFormatting(const RtfToken& token) {
    const int value = token.parameter.value_or(1);
    const auto useFont = [this](int font) { group_.codePage = fonts_.codePage(font).value_or(documentCodePage_); };
    if (token.word == "uc")
        group_.fallbackLength = std::clamp(value, 0, 100);
    else if (token.word == "f")
        useFont(value);
    else if (token.word == "deff")
        defaultFont_ = value;
    else if (token.word == "v")
        group_.hidden = value != 0;
    else if (token.word == "plain") {
        group_.hidden = false;
        useFont(defaultFont_);
    } else if (const auto codePage = rtf_words::documentCodePage(token))
        group_.codePage = documentCodePage_ = *codePage;
}

void Reader::takeSymbol(char symbol) {
    switch (symbol) {
        case '*':
            group_.starred = true;
            break;
        case '~':
            append(u"\u00A0");
            break;
        case '_':
            append(u"\u2011");
            break;
        case '\r':
        case '\n':
            append(u"\n");
            break;
        case '\t':
            append(u"\t");
            break;
        default:
            break;
    }
}

void Reader::takeByte(char byte) {
    if (showsText())
        bytes_ += byte;
}

void Reader::takeUnicode(int value) {
    const auto unit = static_cast<char16_t>(value);  // written as a signed number of 16 bits
    append(QStringView(&unit, 1));
    fallbackLeft_ = group_.fallbackLength;
}

void Reader::append(QStringView text) {
    if (showsText())
        text_ += text;
}

void Reader::decodeBytes() {
    if (!bytes_.isEmpty())
        text_ += decodeCodePage(bytes_, group_.codePage);
    bytes_.clear();
}

}  // namespace

std::optional<QString> rtfText(QByteArrayView bytes, qsizetype enough) {
    return Reader(bytes, enough).read();
}

}  // namespace tavrelon::desktop
