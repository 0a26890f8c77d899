#pragma once

#include <functional>

#include "generation/destinations.h"
#include "generation/pollinations_service.h"
#include "generation/processing_error.h"
#include "generation/system_prompt.h"
#include "scenes/decision_object.h"

namespace tavrelon::generation {

/// What a request gave: a text or an image, never both, and what to do with it.
struct GenerationResult {
    std::optional<QString> text{};
    std::optional<QByteArray> imageData{};
    std::optional<scenes::DecisionObject> decisionObject{};  ///< always there in what the service gives
};

/// What the user asks, and what he was looking at.
struct GenerationRequest {
    QString input;
    std::optional<capture::CapturedContext> context{};
    UserVoice voice{};
    bool enhanceImagePrompts = false;
    bool mayDraw = true;  ///< whether a wish for a picture is answered with one
};

/// Turns one request of the user into one result. Stateless; main thread; it outlives the tasks it gives out.
class TavrelonAIService {
 public:
    static constexpr qint64 maxTokens = 2000;
    static constexpr float temperature = 0.7F;

    TavrelonAIService(PollinationsService& pollinationsService, const scenes::SceneRouter& sceneRouter,
                      platform::Log& log);

    /// Awaited before anything is sent, and again before what a model answered is drawn elsewhere. What it throws ends
    /// the request.
    std::function<async::Task<void>(RequestContents)> permit = [](RequestContents) -> async::Task<void> { co_return; };

    /// Throws `ProcessingError` (`emptyInput` before any model is asked), or `async::CancellationError` when the
    /// awaiting task was asked to stop.
    async::Task<GenerationResult> generate(GenerationRequest request);

    /// Describes frames of a window (JPEG, oldest first) for the request's input. The user's style profile plays no
    /// part. Throws as `generate` does.
    async::Task<GenerationResult> generateVideoResult(GenerationRequest request, std::vector<QByteArray> frames);

 private:
    struct Situation;

    Situation situationOf(GenerationRequest& request) const;
    static ChatPrompt promptOf(const Situation& situation, const UserVoice& voice);
    async::Task<QString> describeFrames(ChatPrompt prompt, const std::vector<QByteArray>& frames);
    async::Task<GenerationResult> generateTextResult(const Situation& situation, const GenerationRequest& request);
    async::Task<GenerationResult> generateImageResult(const Situation& situation, QString prompt, float confidence);
    async::Task<QString> imagePrompt(QString input, bool enhance);
    async::Task<QByteArray> generateImage(QString prompt);

    PollinationsService& pollinationsService_;
    const scenes::SceneRouter& sceneRouter_;
    platform::Log& log_;
};

}  // namespace tavrelon::generation
