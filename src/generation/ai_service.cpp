#include "generation/ai_service.h"

#include "text/characters.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

/// What both paths know of a request.
struct TavrelonAIService::Situation {
    QString input;  ///< trimmed
    std::optional<capture::CapturedContext> context;
    std::optional<scenes::SceneCandidate> candidate;

    std::optional<QByteArray> screenshot() const { return context ? context->screenshotData : std::nullopt; }

    /// The parts of a decision that do not depend on the result.
    scenes::DecisionObject decision(const QString& sceneWithoutCandidate) const;
};

scenes::DecisionObject TavrelonAIService::Situation::decision(const QString& sceneWithoutCandidate) const {
    scenes::DecisionObject decision;
    decision.id = QUuid::createUuid();
    decision.sceneID = candidate ? candidate->sceneID : sceneWithoutCandidate;
    decision.sceneConfidence = candidate ? candidate->score : 0.5F;
    decision.needsScreenshot = screenshot().has_value();
    decision.style = scenes::resolvedStyle(candidate ? std::optional(candidate->config.outputContract) : std::nullopt);
    decision.replacementStrategy = {.method = scenes::ReplacementStrategy::Method::deleteChars};
    decision.safety = {.containsSensitive = false, .shareAllowed = candidate && candidate->config.allowShare};
    return decision;
}

TavrelonAIService::TavrelonAIService(PollinationsService& pollinationsService, const scenes::SceneRouter& sceneRouter,
                                     platform::Log& log)
    : pollinationsService_(pollinationsService), sceneRouter_(sceneRouter), log_(log) {}

async::Task<GenerationResult> TavrelonAIService::generate(GenerationRequest request) {
    Situation situation{.input = text::trimmed(request.input), .context = std::move(request.context), .candidate = {}};
    if (situation.input.isEmpty())
        throw ProcessingError::emptyInput();
    if (situation.context)
        situation.candidate = sceneRouter_.route(*situation.context, 3).front();
    co_return co_await generateTextResult(situation, request.voice);
}

async::Task<GenerationResult> TavrelonAIService::generateTextResult(const Situation& situation,
                                                                    const UserVoice& voice) {
    log_.line(u"[AIService] Detected text/vision intent"_s);
    QString reply;
    try {
        reply = co_await pollinationsService_.generateText(composeSystemPrompt(situation.candidate, voice),
                                                           composeUserMessage(situation.context, situation.input),
                                                           situation.screenshot(), maxTokens, temperature);
    } catch (const async::CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        throw ProcessingError::generationFailed(text::localizedDescription(error));
    }
    auto decision = situation.decision(u"general_text"_s);
    decision.intent = u"reply"_s;
    decision.intentConfidence = 0.6F;
    decision.outputType = scenes::OutputType::text;
    decision.result = reply;
    co_return GenerationResult{.text = std::move(reply), .decisionObject = std::move(decision)};
}

}  // namespace tavrelon::generation
