#include "generation/ai_service.h"

#include "generation/image_intent.h"
#include "generation/image_prompt_cleaning.h"
#include "generation/image_prompt_enhancement.h"
#include "generation/image_tool_call.h"
#include "generation/text_chain.h"
#include "text/characters.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

using Again = ProcessingError::Again;

/// Throws what fails in the task as what the user is told.
template <typename T>
async::Task<T> orFailure(async::Task<T> task) {
    try {
        co_return co_await std::move(task);
    } catch (const async::CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        throw ProcessingError::generationFailed(text::descriptionOf(error),
                                                wouldFailAgain(error) ? Again::Futile : Again::Worthwhile);
    }
}

/// The first and the last are among them.
std::vector<QByteArray> evenlySpaced(const std::vector<QByteArray>& frames) {
    constexpr std::size_t most = 8;  // what models on a machine of one's own take in a bearable time
    if (frames.size() <= most)
        return frames;
    std::vector<QByteArray> chosen;
    for (std::size_t i = 0; i < most; ++i)
        chosen.push_back(frames[i * (frames.size() - 1) / (most - 1)]);
    return chosen;
}

}  // namespace

/// What both paths know of a request.
struct TavrelonAIService::Situation {
    QString input;  ///< trimmed
    std::optional<capture::CapturedContext> context;
    std::optional<scenes::SceneCandidate> candidate;

    /// Absent, too, where the scene does not let the model see the window.
    std::optional<QByteArray> screenshot() const {
        const bool isAllowed = !candidate || candidate->config.allowScreenshot;
        return context && isAllowed ? context->screenshotData : std::nullopt;
    }

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

TavrelonAIService::Situation TavrelonAIService::situationOf(GenerationRequest& request) const {
    Situation situation{.input = text::trimmed(request.input), .context = std::move(request.context), .candidate = {}};
    if (situation.input.isEmpty())
        throw ProcessingError::emptyInput();
    if (situation.context)
        situation.candidate = sceneRouter_.route(*situation.context, 3).front();
    return situation;
}

ChatPrompt TavrelonAIService::promptOf(const Situation& situation, const UserVoice& voice) {
    return {.system = composeSystemPrompt(situation.candidate, voice),
            .user = composeUserMessage(situation.context, situation.input),
            .maxTokens = maxTokens,
            .temperature = temperature};
}

async::Task<GenerationResult> TavrelonAIService::generate(GenerationRequest request) {
    const auto situation = situationOf(request);
    if (!request.mayDraw || !isImageRequest(situation.input))
        co_return co_await generateTextResult(situation, request);
    log_.line(u"[AIService] Detected image intent"_s);
    co_await permit(RequestContents::Text);
    auto prompt = co_await imagePrompt(situation.input, request.enhanceImagePrompts);
    co_return co_await generateImageResult(situation, std::move(prompt), 0.7F);
}

async::Task<GenerationResult> TavrelonAIService::generateVideoResult(GenerationRequest request,
                                                                     std::vector<QByteArray> frames) {
    const auto situation = situationOf(request);
    if (frames.empty())
        throw ProcessingError::generationFailed({u"No video frames captured"_s, u"没有录到视频画面"_s});
    request.voice.userStyle.reset();
    co_await permit(RequestContents::Frames);
    auto reply = co_await orFailure(describeFrames(promptOf(situation, request.voice), frames));
    auto decision = situation.decision(u"video_vision"_s);
    decision.intent = u"video"_s;
    decision.intentConfidence = 0.7F;
    decision.needsScreenshot = false;
    decision.outputType = scenes::OutputType::text;
    decision.result = reply;
    co_return GenerationResult{.text = std::move(reply), .decisionObject = std::move(decision)};
}

/// Ollama looks at pictures alone when it is switched on. Else all frames go to the one model that takes so many, and
/// the last one to those that take one: none describes what it does not see. What is told is why the first that was
/// asked failed.
async::Task<QString> TavrelonAIService::describeFrames(ChatPrompt prompt, const std::vector<QByteArray>& frames) {
    const auto& configuration = pollinationsService_.configuration;
    std::exception_ptr reason;
    if (configuration.ollamaEnabled)
        co_return co_await pollinationsService_.generateWithOllama(prompt.system, prompt.user, evenlySpaced(frames));
    auto oneFrame = prompt;
    oneFrame.image = frames.back();
    if (configuration.asksOwnModel()) {
        try {
            if (!configuration.ownModelTakesPictures)
                throw PollinationsError::unsupportedImageInput(
                    {u"The model of your own server takes no pictures"_s, u"自有服务器的模型不能看图"_s});
            co_return co_await pollinationsService_.generateWithGateway(oneFrame, JsonMode::Off);
        } catch (const async::CancellationError&) {
            throw;
        } catch (const std::exception&) {
            if (configuration.asksGatewayOnly())
                throw;
            reason = std::current_exception();
        }
    }
    if (configuration.hasKeyFor(PollinationsModel::nvidiaNemotron)) {
        try {
            co_return co_await pollinationsService_.generateWithNvidia(PollinationsModel::nvidiaNemotron, prompt,
                                                                       frames, Thinking::ForcedOff);
        } catch (const async::CancellationError&) {
            throw;
        } catch (const std::exception&) {
            if (!reason)
                reason = std::current_exception();
        }
    }
    co_return co_await generateVideoFallback(pollinationsService_, reason, std::move(oneFrame));
}

async::Task<GenerationResult> TavrelonAIService::generateTextResult(const Situation& situation,
                                                                    const GenerationRequest& request) {
    log_.line(u"[AIService] Detected text/vision intent"_s);
    auto prompt = promptOf(situation, request.voice);
    prompt.image = situation.screenshot();
    co_await permit(prompt.image ? RequestContents::Picture : RequestContents::Text);
    auto reply = co_await orFailure(generateText(pollinationsService_, std::move(prompt)));
    if (auto toolPrompt = request.mayDraw ? parseImageToolCall(reply) : std::nullopt) {
        co_await permit(RequestContents::Text);  // who draws may be another than who answered
        co_return co_await generateImageResult(situation, std::move(*toolPrompt), 0.6F);
    }
    auto decision = situation.decision(u"general_text"_s);
    decision.intent = u"reply"_s;
    decision.intentConfidence = 0.6F;
    decision.outputType = scenes::OutputType::text;
    decision.result = reply;
    co_return GenerationResult{.text = std::move(reply), .decisionObject = std::move(decision)};
}

/// What the image services are asked: the request as a model elaborated it, or without the words that only ask.
async::Task<QString> TavrelonAIService::imagePrompt(QString input, bool enhance) {
    if (!enhance)
        co_return text::trimmedOrAbsent(cleanImagePrompt(input)).value_or(input);
    const auto enhanced = co_await enhanceImagePrompt(pollinationsService_, input, PromptSafety::Demanded);
    co_return sanitizeImagePrompt(text::trimmedOrAbsent(enhanced).value_or(input));
}

async::Task<GenerationResult> TavrelonAIService::generateImageResult(const Situation& situation, QString prompt,
                                                                     float confidence) {
    auto image = co_await orFailure(generateImage(prompt));
    auto decision = situation.decision(u"image_generation"_s);
    decision.intent = u"image"_s;
    decision.intentConfidence = confidence;
    decision.outputType = scenes::OutputType::image;
    decision.result = scenes::ImageSpec{.prompt = std::move(prompt), .size = scenes::ImageSize::medium};
    co_return GenerationResult{.imageData = std::move(image), .decisionObject = std::move(decision)};
}

/// Pollinations first, GLM for whatever it did not give, where there is a key for it. What is told is why the first
/// failed.
async::Task<QByteArray> TavrelonAIService::generateImage(QString prompt) {
    std::exception_ptr reason;
    try {
        co_return co_await pollinationsService_.generateImageWithPollinations(prompt);
    } catch (const async::CancellationError&) {
        throw;
    } catch (const KeyRefused&) {
        throw;
    } catch (const std::exception& error) {
        const auto* known = dynamic_cast<const PollinationsError*>(&error);
        const auto& configuration = pollinationsService_.configuration;
        if (configuration.asksGatewayOnly() || !configuration.glmApiKey() ||
            (known && known->code() == PollinationsError::Code::requestTimedOut))
            throw;
        log_.line("[Pollinations] Image generation failed with Pollinations: "_L1 + text::localizedDescription(error));
        reason = std::current_exception();
    }
    try {
        auto image = co_await pollinationsService_.generateImageWithGLM(prompt, 1024, 1024, u"hd"_s);
        log_.line("[Pollinations] Image generated with GLM "_L1 + PollinationsService::glmImageModel);
        co_return image;
    } catch (const async::CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        log_.line("[Pollinations] GLM image generation failed: "_L1 + text::localizedDescription(error));
    }
    std::rethrow_exception(reason);
}

}  // namespace tavrelon::generation
