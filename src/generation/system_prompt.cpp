#include "generation/system_prompt.h"

#include "generation/system_prompt_texts.h"
#include "text/characters.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

void appendSection(QString& prompt, QLatin1StringView title, const std::optional<QString>& text) {
    if (const auto kept = text ? text::trimmedOrAbsent(*text) : std::nullopt)
        prompt += "\n"_L1 + title + ":\n"_L1 + *kept;
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
        lines.push_back("App: "_L1 + *context->appName);
    if (context->windowTitle)
        lines.push_back("Window: "_L1 + *context->windowTitle);
    if (context->selection && !context->selection->isEmpty() && *context->selection != text::trimmed(input))
        lines.push_back("Selected Text: "_L1 + *context->selection);
    if (lines.isEmpty())
        return std::nullopt;
    return lines.join(u'\n');
}

QString composeUserMessage(const std::optional<capture::CapturedContext>& context, const QString& trimmedInput) {
    const auto lines = contextLines(context, trimmedInput);
    return lines ? trimmedInput + "\n\n[Context]\n"_L1 + *lines : trimmedInput;
}

}  // namespace tavrelon::generation
