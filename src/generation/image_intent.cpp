#include "generation/image_intent.h"

#include <algorithm>

#include "generation/image_keywords.h"
#include "text/scripts.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

template <typename Words>
bool containsAny(const QString& text, const Words& words) {
    return std::ranges::any_of(words, [&](QStringView word) { return text.contains(word); });
}

template <typename Words>
bool anyTokenBeginsWith(const QStringList& tokens, const Words& words) {
    return std::ranges::any_of(tokens, [&](const QString& token) {
        return std::ranges::any_of(words, [&](QStringView word) { return token.startsWith(word); });
    });
}

}  // namespace

QStringList wordTokens(const QString& text) {
    QStringList tokens(1);
    text::forEachScalar(text.toLower(), [&](char32_t scalar) {
        // A mark belongs to the letter before it: Thai and Hindi words, and decomposed accents, stay whole.
        if (QChar::isLetterOrNumber(scalar) || (QChar::isMark(scalar) && !tokens.last().isEmpty()))
            tokens.last() += QChar::fromUcs4(scalar);
        else if (!tokens.last().isEmpty())
            tokens.emplace_back();
    });
    if (tokens.last().isEmpty())
        tokens.removeLast();
    return tokens;
}

bool isImageRequest(const QString& text) {
    const auto lower = text.toLower();
    const auto tokens = wordTokens(text);
    if (text.contains(u'画') || text.contains(u'绘') || lower.contains("draw"_L1) || lower.contains("sketch"_L1) ||
        std::ranges::any_of(tokens, [](const QString& token) { return token.startsWith("hua"_L1); }))
        return true;
    if (anyTokenBeginsWith(tokens, imageActionKeywordsPinyin))
        return anyTokenBeginsWith(tokens, imageKeywordsPinyin) || tokens.size() >= 2;
    const bool keyword = containsAny(text, imageKeywordsZh) || containsAny(lower, imageKeywordsEn);
    const bool action = containsAny(text, imageActionKeywordsZh) || containsAny(lower, imageActionKeywordsEn);
    return keyword && action;
}

std::optional<QString> detectPromptLanguage(const QString& text) {
    const auto counts = text::countScripts(text);
    if (counts.cjk == 0 && counts.latin == 0)
        return std::nullopt;
    return text::predominantLanguage(counts);
}

}  // namespace tavrelon::generation
