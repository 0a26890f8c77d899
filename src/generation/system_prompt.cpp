#include "generation/system_prompt.h"

#include <algorithm>
#include <initializer_list>

#include "generation/system_prompt_texts.h"
#include "text/characters.h"
#include "text/foreign_text.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

void appendSection(QString& prompt, QLatin1StringView title, const std::optional<QString>& text) {
    if (const auto kept = text ? text::trimmedOrAbsent(*text) : std::nullopt)
        prompt += "\n"_L1 + title + ":\n"_L1 + *kept;
}

constexpr auto contextHeader = "[Context]"_L1;
constexpr auto appLabel = "App: "_L1, windowLabel = "Window: "_L1, selectionLabel = "Selected Text: "_L1;

/// How long the name of an application or the title of a window is, in characters.
constexpr qsizetype longestName = 300;

/// A text in whose lines from `first` on nothing passes for one of the labels: such a line is quoted.
QString fenced(const QString& text, qsizetype first, std::initializer_list<QLatin1StringView> labels) {
    auto material = text::withoutControls(text);
    material.replace(QChar::LineSeparator, u'\n').replace(QChar::ParagraphSeparator, u'\n');
    auto lines = material.split(u'\n');
    for (auto i = first; i < lines.size(); ++i) {
        // What cannot be seen must not hide a label.
        const auto seen = text::oneLine(lines[i], longestName).trimmed();
        if (std::ranges::any_of(
                labels, [&](QLatin1StringView label) { return seen.startsWith(label.trimmed(), Qt::CaseInsensitive); }))
            lines[i].prepend("> "_L1);
    }
    return lines.join(u'\n');
}

void appendScene(QString& prompt, const scenes::SceneCandidate& candidate) {
    prompt += "\nScene: "_L1 + candidate.sceneName + u'.';
    const auto lines = contractLines(candidate.config.outputContract);
    if (!lines.isEmpty())
        prompt += "\nOutput Contract:\n"_L1 + lines.join(u'\n');
}

}  // namespace

QString composeSystemPrompt(const std::optional<scenes::SceneCandidate>& candidate, const UserVoice& voice) {
    auto prompt = texts::basePrompt.toString();
    appendSection(prompt, "Clone System Prompt"_L1, voice.cloneSystemPrompt);
    appendSection(prompt, "User Voice"_L1, voice.adaptivePrompt);
    appendSection(prompt, "Language Style"_L1, voice.languageStyle);
    if (candidate)
        appendScene(prompt, *candidate);
    if (voice.userStyle && !voice.userStyle->isEmpty())
        prompt += "\nUser Style:\n"_L1 + *voice.userStyle;
    return prompt;
}

QStringList contractLines(const scenes::OutputContract& contract) {
    QStringList lines;
    if (contract.requiredFields && !contract.requiredFields->isEmpty())
        lines.push_back("Required fields: "_L1 + contract.requiredFields->join(", "_L1));
    if (contract.prohibitedTerms && !contract.prohibitedTerms->isEmpty())
        lines.push_back("Avoid: "_L1 + contract.prohibitedTerms->join(", "_L1));
    if (contract.lengthRange)
        lines.push_back(u"Length: %1-%2 chars"_s.arg(contract.lengthRange->lower).arg(contract.lengthRange->upper));
    if (contract.tone)
        lines.push_back("Tone: "_L1 + *contract.tone);
    if (contract.format)
        lines.push_back("Format: "_L1 + *contract.format);
    return lines;
}

std::optional<QString> contextLines(const std::optional<capture::CapturedContext>& context, const QString& input) {
    if (!context)
        return std::nullopt;
    QStringList lines;
    if (context->appName)
        lines.push_back(appLabel + text::oneLine(*context->appName, longestName));
    if (context->windowTitle)
        lines.push_back(windowLabel + text::oneLine(*context->windowTitle, longestName));
    if (context->selection && !context->selection->isEmpty() && *context->selection != text::trimmed(input))
        lines.push_back(selectionLabel +
                        fenced(*context->selection, 1, {contextHeader, appLabel, windowLabel, selectionLabel}));
    if (lines.isEmpty())
        return std::nullopt;
    return lines.join(u'\n');
}

QString composeUserMessage(const std::optional<capture::CapturedContext>& context, const QString& trimmedInput) {
    const auto lines = contextLines(context, trimmedInput);
    const auto message = fenced(trimmedInput, 0, {contextHeader});
    return lines ? message + "\n\n"_L1 + contextHeader + u'\n' + *lines : message;
}

}  // namespace tavrelon::generation
