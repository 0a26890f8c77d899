#include "generation/image_prompt_cleaning.h"

#include <QRegularExpression>
#include <algorithm>

#include "generation/image_intent.h"
#include "generation/image_keywords.h"
#include "text/characters.h"
#include "text/scripts.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

/// Removes prefixes in whole passes over the list until one removes nothing.
template <typename Prefixes>
QString withoutPrefixes(QString text, const Prefixes& prefixes) {
    for (bool removed = true; removed;) {
        removed = false;
        for (const QStringView prefix : prefixes) {
            if (text.startsWith(prefix)) {
                text = text::trimmed(text.sliced(prefix.size()));
                removed = true;
            }
        }
    }
    return text;
}

QString withoutEnglishCommand(const QString& text) {
    static const QRegularExpression command(
        u"^(?i)\\s*(please\\s+)?(generate|create|make|draw|paint|render|illustrate|design)\\s+(an?\\s+)?"
        "(image|picture|photo|drawing|illustration|rendering)?\\s*(of\\s+)?"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    const auto match = command.match(text);
    return match.hasMatch() ? text::trimmed(text.sliced(match.capturedEnd())) : text;
}

/// What is left of a word that begins with a pinyin action; the word itself when it begins with none.
QString withoutPinyinAction(const QString& token) {
    const auto action =
        std::ranges::find_if(imageActionKeywordsPinyin, [&](QStringView word) { return token.startsWith(word); });
    if (action != imageActionKeywordsPinyin.end())
        return token.sliced(action->size());
    return std::ranges::find(imageActionKeywordsEn, QStringView(token)) == imageActionKeywordsEn.end() ? token
                                                                                                       : QString();
}

QString stripPinyinActionTokens(const QString& text) {
    if (text::countScripts(text).cjk > 0)
        return text;
    QStringList kept;
    for (const auto& token : wordTokens(text)) {
        if (auto rest = withoutPinyinAction(token); !rest.isEmpty())
            kept.push_back(std::move(rest));
    }
    return kept.isEmpty() ? text : kept.join(u' ');
}

}  // namespace

QString cleanImagePrompt(const QString& text) {
    auto trimmed = text::trimmed(text);
    if (trimmed.isEmpty())
        return trimmed;
    auto prompt = withoutPrefixes(trimmed, imagePromptPolitePrefixesZh);
    prompt = withoutPrefixes(prompt, imagePromptActionPrefixesZh);
    prompt = stripPinyinActionTokens(withoutEnglishCommand(prompt)).simplified();
    return prompt.isEmpty() ? trimmed : prompt;
}

QString sanitizeImagePrompt(const QString& text) {
    auto trimmed = text::trimmed(text);
    const auto lower = trimmed.toLower();
    if (trimmed.isEmpty() || lower.contains("nsfw"_L1) || lower.contains("nudity"_L1) || lower.contains("sexual"_L1))
        return trimmed;
    return trimmed + ", safe, no nudity, no sexual content"_L1;
}

}  // namespace tavrelon::generation
