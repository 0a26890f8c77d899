#include "learning/clone_profile.h"

#include "learning/clone_error.h"
#include "text/tolerant_json.h"

namespace tavrelon::learning {

using Code = CloneServiceError::Code;

QString cloneProfilePrompt() {
    return QStringLiteral(
        "You are a digital twin prompt designer. Analyze the samples and produce a clone profile that matches the "
        "user's voice.\n"
        "Return JSON only with this schema:\n"
        "{\"system_prompt\": \"...\", \"language_style\": \"...\"}\n"
        "\n"
        "Requirements for system_prompt:\n"
        "- Same language as the samples.\n"
        "- Use first-person voice by default.\n"
        "- Include sections: Role & Identity, Communication Guidelines, Topics & Expertise, Constraints, Safety & NSFW "
        "(only if needed).\n"
        "- Avoid saying you're an AI/assistant/clone or offering generic help.\n"
        "- Keep it specific and grounded in the samples.");
}

CloneProfile parseCloneProfile(const QString& reply) {
    const auto object = text::parseJSONObject(reply);
    if (!object)
        throw CloneServiceError(Code::invalidResponse);

    std::optional<QString> prompt;
    std::optional<QString> style;
    if (const auto* persona = text::find(*object, "persona"); persona && persona->is_object()) {
        prompt = text::firstText(*persona, {"systemPrompt", "system_prompt"});
        const auto* styles = prompt ? text::find(*persona, "styles") : nullptr;
        if (styles && styles->is_object())
            style = text::firstText(*styles, {"language"});
    }
    if (!prompt)
        prompt = text::firstText(*object, {"system_prompt", "systemPrompt"});
    if (!prompt)
        throw CloneServiceError(Code::missingSystemPrompt);
    if (!style)
        style = text::firstText(*object, {"language_style", "languageStyle"});
    return {*prompt, style.value_or(QString())};
}

}  // namespace tavrelon::learning
