#include "generation/image_prompt_enhancement.h"

#include "generation/image_prompt_texts.h"
#include "generation/model_walk.h"
#include "generation/prompt_template.h"
#include "text/characters.h"
#include "text/tolerant_json.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

constexpr auto tag = "[Pollinations] "_L1;

ChatPrompt question(QStringView system, QStringView safetyRule, PromptSafety safety, const QString& text) {
    auto prompt = system.toString();
    if (safety == PromptSafety::Demanded)
        prompt += safetyRule;
    return {.system = std::move(prompt), .user = text};
}

/// The JSON document that is used as a template, and how the log calls it; nothing when the reply holds none.
struct TemplateReply {
    QString text;
    QLatin1StringView remark;
};
std::optional<TemplateReply> templateFrom(const QString& reply) {
    if (const auto object = text::parseJSONObject(reply); object && nestsAtMost(*object, deepestTemplate))
        return TemplateReply{QString::fromUtf8(text::compactJson(*object)), "generated with "_L1};
    auto trimmed = text::trimmed(reply);
    if (trimmed.startsWith(u'{') && trimmed.endsWith(u'}'))
        return TemplateReply{std::move(trimmed), "returned raw JSON with "_L1};
    return std::nullopt;
}

}  // namespace

async::Task<QString> enhanceImagePrompt(PollinationsService& service, QString text, PromptSafety safety) {
    const auto trimmed = text::trimmed(text);
    if (trimmed.isEmpty())
        co_return text;
    if (const auto written = co_await generatePromptTemplate(service, trimmed, safety)) {
        const auto object = text::parseJSONObject(*written);
        const auto phrases = object && isStructuredTemplate(*object) ? flattenPromptTemplate(*object) : std::nullopt;
        co_return phrases.value_or(*written);
    }
    const auto optimized = co_await optimizeImagePrompt(service, trimmed, safety);
    co_return optimized.value_or(trimmed);
}

async::Task<std::optional<QString>> generatePromptTemplate(PollinationsService& service, QString text,
                                                           PromptSafety safety) {
    auto prompt = question(texts::templatePrompt, texts::templateSafetyRule, safety, text);
    prompt.maxTokens = 800;
    prompt.temperature = 0.6F;
    WalkSteps steps{
        .accept = [&service](PollinationsModel model, const QString& reply) -> std::optional<QString> {
            const auto found = templateFrom(reply);
            service.log().line(tag + "Prompt template "_L1 +
                               (found ? found->remark : "returned empty or invalid JSON with "_L1) +
                               displayName(model));
            return found ? std::optional(found->text) : std::nullopt;
        },
        .failed =
            [&service](PollinationsModel model, const std::exception_ptr& error) {
                service.log().line(tag + "Prompt template generation failed with "_L1 + displayName(model) + ": "_L1 +
                                   describe(error));
            },
    };
    return walkModels(service, service.configuration.promptEnhancementModels(), std::move(prompt), JsonMode::On,
                      std::move(steps));
}

async::Task<std::optional<QString>> optimizeImagePrompt(PollinationsService& service, QString text,
                                                        PromptSafety safety) {
    auto prompt = question(texts::optimizePrompt, texts::optimizeSafetyRule, safety, text);
    prompt.maxTokens = 200;
    prompt.temperature = 0.7F;
    WalkSteps steps{
        .accept =
            [&service](PollinationsModel model, const QString& reply) {
                auto kept = text::trimmedOrAbsent(reply);
                service.log().line(
                    tag + (kept ? "Prompt optimized with "_L1 : "Prompt optimization returned empty with "_L1) +
                    displayName(model));
                return kept;
            },
        .failed =
            [&service](PollinationsModel model, const std::exception_ptr& error) {
                service.log().line(tag + "Prompt optimization failed with "_L1 + displayName(model) + ": "_L1 +
                                   describe(error));
            },
    };
    return walkModels(service, service.configuration.promptEnhancementModels(), std::move(prompt), JsonMode::Off,
                      std::move(steps));
}

}  // namespace tavrelon::generation
