#include "learning/adaptive_prompt.h"

#include <QStringList>

#include "text/characters.h"

namespace tavrelon::learning::adaptive_prompt {

namespace {

constexpr qsizetype minSampleLength = 2;

QString withoutQuotationMarks(const QString& text) {
    const auto isMark = [](QChar c) { return c == u'"' || c == u'\''; };
    QStringView kept = text;
    while (!kept.isEmpty() && isMark(kept.front()))
        kept = kept.sliced(1);
    while (!kept.isEmpty() && isMark(kept.back()))
        kept = kept.chopped(1);
    return kept.toString();
}

/// One blank for each run of white space, also at either end.
QString collapsedWhiteSpace(const QString& text) {
    QString collapsed;
    collapsed.reserve(text.size());
    bool inRun = false;
    for (const QChar c : text) {
        if (!c.isSpace())
            collapsed += c;
        else if (!inRun)
            collapsed += u' ';
        inRun = c.isSpace();
    }
    return collapsed;
}

}  // namespace

std::optional<QString> cleanedSample(const QString& input) {
    const auto sample = input.simplified();
    auto kept = text::prefixOfCharacters(sample, maxSampleLength);
    if (text::characterCount(kept) < minSampleLength)
        return std::nullopt;
    if (kept.size() < sample.size())
        kept += QStringLiteral("...");
    return kept;
}

QString systemPrompt() {
    return QStringLiteral(
        "You are a prompt engineer. Given recent user inputs, write a concise system prompt that makes an assistant "
        "sound like the user.\n"
        "Rules:\n"
        "- Output plain text only. No markdown, bullets, numbering, JSON, or code blocks.\n"
        "- Write the prompt in the same language as the samples.\n"
        "- Be specific about tone, formality, length, punctuation, emojis, and recurring phrasing.\n"
        "- Avoid generic advice like \"be helpful\"; focus on how to sound.\n"
        "- Do not mention the samples or the analysis.\n"
        "- Keep it under 120 words.");
}

QString userPrompt(const std::vector<QString>& samples) {
    QStringList lines{QStringLiteral("Recent user inputs:")};
    for (const auto& sample : samples)
        lines << QStringLiteral("Input ") + QString::number(lines.size()) + QStringLiteral(": ") + sample;
    lines << QStringLiteral("Write the updated system prompt now.");
    return lines.join(u'\n');
}

std::optional<QString> cleanedPrompt(const QString& reply) {
    const auto trimmed = text::trimmedOrAbsent(reply);
    if (!trimmed)
        return std::nullopt;
    const auto prompt = collapsedWhiteSpace(withoutQuotationMarks(*trimmed));
    return text::prefixOfCharacters(prompt, maxPromptLength);
}

}  // namespace tavrelon::learning::adaptive_prompt
