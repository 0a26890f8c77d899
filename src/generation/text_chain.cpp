#include <QUrl>

#include "generation/model_walk.h"

/// The chain that serves a text or vision request, from the user's own model down to the last of the list.
namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

constexpr auto tag = "[Pollinations] "_L1;

/// The line that tells why the first walk leaves a model.
QString failureLine(PollinationsModel model, const std::exception_ptr& error, bool imageSent) {
    const auto failed = tag + "Text generation failed with "_L1 + displayName(model) + ": "_L1;
    try {
        std::rethrow_exception(error);
    } catch (const PollinationsError& known) {
        const bool api = known.code() == PollinationsError::Code::apiError;
        if (api && known.status() == 400 && known.text().contains("1210"_L1) &&
            chatProtocol(model) == ChatProtocol::GLM)
            return tag + (imageSent ? "GLM error 1210 with image input. Skipping model."_L1
                                    : "GLM error 1210. Skipping model."_L1);
        if (known.code() == PollinationsError::Code::unsupportedImageInput)
            return tag + known.text() + ". Skipping model."_L1;
        return failed + (api ? known.text() : known.localizedDescription());
    } catch (const std::exception& other) {
        return failed + text::localizedDescription(other);
    }
}

/// What the user is told is why the service of their choice failed, or else the first that was asked.
void keepFirst(std::exception_ptr& kept, std::exception_ptr error) {
    if (!kept)
        kept = std::move(error);
}

QString sourceAt(const QString& model, const QString& address) {
    const auto host = QUrl(address).host();
    return host.isEmpty() ? model : model + u" ("_s + host + u')';
}

}  // namespace

async::Task<QString> PollinationsService::generateText(QString systemPrompt, QString userPrompt,
                                                       std::optional<QByteArray> image, qint64 maxTokens,
                                                       float temperature) {
    auto answer =
        co_await answerText(std::move(systemPrompt), std::move(userPrompt), std::move(image), maxTokens, temperature);
    co_return std::move(answer.text);
}

async::Task<ModelAnswer> PollinationsService::answerText(QString systemPrompt, QString userPrompt,
                                                         std::optional<QByteArray> image, qint64 maxTokens,
                                                         float temperature) {
    if (ollamaEnabled && image)
        co_return ModelAnswer{
            co_await generateWithOllama(std::move(systemPrompt), std::move(userPrompt), {*std::move(image)}),
            u"Ollama"_s};

    const ChatPrompt prompt{std::move(systemPrompt), std::move(userPrompt), std::move(image), maxTokens, temperature};
    QString source;
    std::exception_ptr reason;
    if (auto text = co_await customModelText(prompt, source, reason))
        co_return ModelAnswer{*text, source};
    if (asksGatewayOnly() && prompt.image) {
        auto withoutImage = prompt;
        withoutImage.image.reset();
        if (auto text = co_await customModelText(std::move(withoutImage), source, reason))
            co_return ModelAnswer{*text, source};
    }
    if (asksGatewayOnly())
        reason ? std::rethrow_exception(reason) : throw PollinationsError::allModelsFailed();
    if (auto text = co_await firstWalk(prompt, source, reason))
        co_return ModelAnswer{*text, source};
    if (prompt.image) {
        log_.line(tag + "All vision models failed. Retrying without image."_L1);
        if (auto text = co_await walkWithoutImage(prompt, source, reason))
            co_return ModelAnswer{*text, source};
    }
    if (reason)
        std::rethrow_exception(reason);
    throw PollinationsError::allModelsFailed();
}

QString PollinationsService::sourceName(PollinationsModel model) const {
    if (asksGatewayOnly() && pollinationsVisionModelOverride)
        return sourceAt(*pollinationsVisionModelOverride, pollinationsBaseURL());
    switch (chatProtocol(model)) {
        case ChatProtocol::Nvidia:
            return sourceAt(displayName(model), endpoints_.nvidiaChatCompletionsURL);
        case ChatProtocol::GLM:
            return sourceAt(displayName(model), endpoints_.glmBaseURL);
        case ChatProtocol::Pollinations:
            break;
    }
    return sourceAt(displayName(model), pollinationsBaseURL());
}

async::Task<std::optional<QString>> PollinationsService::customModelText(ChatPrompt prompt, QString& source,
                                                                         std::exception_ptr& reason) {
    if (!pollinationsCustomEnabled || !pollinationsVisionModelOverride || pollinationsVisionModelOverride->isEmpty())
        co_return std::nullopt;
    const auto model = *pollinationsVisionModelOverride;
    try {
        auto text = co_await generateWithGateway(std::move(prompt), JsonMode::Off);
        log_.line(tag + "Text generated with custom model "_L1 + model);
        source = sourceAt(model, pollinationsBaseURL());
        co_return text;
    } catch (const async::CancellationError&) {
        throw;
    } catch (const KeyRefused&) {
        throw;
    } catch (const std::exception& error) {
        log_.line(tag + "Custom Pollinations model failed: "_L1 + text::localizedDescription(error));
        keepFirst(reason, std::current_exception());
    }
    co_return std::nullopt;
}

async::Task<std::optional<QString>> PollinationsService::firstWalk(ChatPrompt prompt, QString& source,
                                                                   std::exception_ptr& reason) {
    auto models = availableModels(prompt.image ? visionModels : textModels, prompt.image);
    const bool imageSent = prompt.image.has_value();
    WalkSteps steps{
        .accept =
            [this, &source](PollinationsModel model, const QString& reply) {
                source = sourceName(model);
                log_.line(tag + "Text generated with "_L1 + displayName(model));
                return std::optional(reply);
            },
        .failed =
            [this, &reason, imageSent](PollinationsModel model, std::exception_ptr error) {
                log_.line(failureLine(model, error, imageSent));
                keepFirst(reason, std::move(error));
            },
    };
    return walkModels(*this, std::move(models), std::move(prompt), JsonMode::Off, std::move(steps));
}

async::Task<std::optional<QString>> PollinationsService::walkWithoutImage(ChatPrompt prompt, QString& source,
                                                                          std::exception_ptr& reason) {
    prompt.image.reset();
    WalkSteps steps{
        .accept =
            [this, &source](PollinationsModel model, const QString& reply) {
                source = sourceName(model);
                log_.line(tag + "Text generated with "_L1 + displayName(model) + " (no image)"_L1);
                return std::optional(reply);
            },
        .failed =
            [this, &reason](PollinationsModel model, std::exception_ptr error) {
                log_.line(tag + "Text generation failed with "_L1 + displayName(model) + " (no image): "_L1 +
                          describe(error));
                keepFirst(reason, std::move(error));
            },
    };
    return walkModels(*this, textModels, std::move(prompt), JsonMode::Off, std::move(steps));
}

}  // namespace tavrelon::generation
