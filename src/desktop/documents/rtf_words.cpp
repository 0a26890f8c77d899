#include "desktop/documents/rtf_words.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tavrelon::desktop::rtf_words {

namespace {

using Word = std::string_view;

constexpr auto skippedDestinations = std::to_array<Word>({
    "annotation", "atnauthor",  "atnid",     "atrfend",    "atrfstart", "bkmkend", "bkmkstart", "colortbl",
    "datafield",  "filetbl",    "fldinst",   "footer",     "footerf",   "footerl", "footerr",   "footnote",
    "ftncn",      "ftnsep",     "ftnsepc",   "generator",  "header",    "headerf", "headerl",   "headerr",
    "info",       "keywords",   "listtable", "nonshppict", "objdata",   "pict",    "private",   "revtbl",
    "rxe",        "stylesheet", "tc",        "txe",        "xe",
});
static_assert(std::ranges::is_sorted(skippedDestinations));

struct WordText {
    Word word;
    std::u16string_view text;
};
constexpr auto wordTexts = std::to_array<WordText>({
    {"bullet", u"\u2022"},    {"cell", u"\t"},       {"column", u"\n"},      {"emdash", u"\u2014"},
    {"emspace", u"\u2003"},   {"endash", u"\u2013"}, {"enspace", u"\u2002"}, {"ldblquote", u"\u201C"},
    {"line", u"\n"},          {"lquote", u"\u2018"}, {"ltrmark", u"\u200E"}, {"nestcell", u"\t"},
    {"nestrow", u"\n"},       {"page", u"\n"},       {"par", u"\n"},         {"qmspace", u"\u2005"},
    {"rdblquote", u"\u201D"}, {"row", u"\n"},        {"rquote", u"\u2019"},  {"rtlmark", u"\u200F"},
    {"sect", u"\n"},          {"tab", u"\t"},        {"zwj", u"\u200D"},     {"zwnj", u"\u200C"},
});
static_assert(std::ranges::is_sorted(wordTexts, {}, &WordText::word));

Word view(QByteArrayView word) {
    return {word.data(), static_cast<std::size_t>(word.size())};
}

}  // namespace

bool isSkippedDestination(QByteArrayView word) {
    return std::ranges::binary_search(skippedDestinations, view(word));
}

std::optional<QStringView> textOf(QByteArrayView word) {
    const auto found = std::ranges::lower_bound(wordTexts, view(word), {}, &WordText::word);
    if (found == wordTexts.end() || found->word != view(word))
        return std::nullopt;
    return QStringView(found->text);
}

std::optional<int> documentCodePage(const RtfToken& token) {
    constexpr int macRoman = 10000;
    if (token.word == "ansicpg" && token.parameter)
        return token.parameter;
    if (token.word == "ansi")
        return 1252;
    if (token.word == "mac")
        return macRoman;
    if (token.word == "pc")
        return 437;
    if (token.word == "pca")
        return 850;
    return std::nullopt;
}

}  // namespace tavrelon::desktop::rtf_words
