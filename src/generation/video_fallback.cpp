#include "generation/model_walk.h"

/// The chain that describes a video by one of its frames, when the model that takes many failed.
namespace tavrelon::generation {

using namespace Qt::StringLiterals;

async::Task<QString> PollinationsService::generateVideoFallback(std::exception_ptr previousError, QByteArray frame,
                                                                QString systemPrompt, QString userPrompt,
                                                                qint64 maxTokens, float temperature) {
    const ChatPrompt prompt{.system = std::move(systemPrompt),
                            .user = std::move(userPrompt),
                            .image = std::move(frame),
                            .maxTokens = maxTokens,
                            .temperature = temperature};
    auto models = visionModels;
    std::erase(models, PollinationsModel::nvidiaNemotron);
    WalkSteps steps{
        .accept =
            [this](PollinationsModel model, const QString& reply) {
                log_.line("[Pollinations] Video fallback text generated with "_L1 + displayName(model));
                return std::optional(reply);
            },
        .failed =
            [this, &previousError](PollinationsModel model, const std::exception_ptr& error) {
                log_.line("[Pollinations] Video fallback failed with "_L1 + displayName(model) + ": "_L1 +
                          describe(error));
                if (!previousError)
                    previousError = error;
            },
    };
    if (auto text =
            co_await walkModels(*this, availableModels(models, prompt.image), prompt, JsonMode::Off, std::move(steps)))
        co_return *text;
    if (previousError)
        std::rethrow_exception(previousError);
    throw PollinationsError::allModelsFailed();
}

}  // namespace tavrelon::generation
