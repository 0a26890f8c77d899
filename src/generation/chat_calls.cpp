#include "generation/chat_glm.h"
#include "generation/chat_nvidia.h"
#include "generation/chat_ollama.h"
#include "generation/chat_pollinations.h"
#include "generation/chat_wire.h"
#include "generation/error_text.h"
#include "generation/pollinations_service.h"

/// The gateway's single calls: what it holds is put into a request, sent, and the answer read.
namespace tavrelon::generation {

async::Task<QString> PollinationsService::generateWithPollinations(QString model, ImageCapability imageCapable,
                                                                   ChatPrompt prompt, JsonMode jsonMode) {
    auto request = chat_pollinations::buildRequest({.baseURL = pollinationsBaseURL(),
                                                    .key = effectivePollinationsApiKey(),
                                                    .model = std::move(model),
                                                    .imageCapable = imageCapable,
                                                    .prompt = std::move(prompt),
                                                    .jsonMode = jsonMode});
    const auto sent = request.body;
    const auto limit = asksLocalServer() ? localDeadline : raceDeadline;
    if (asksLocalServer())
        request.requestTimeout = request.resourceTimeout = limit;
    const auto response = co_await raceWithDeadline(limit, exchange(std::move(request)));
    co_return chat_wire::withoutThoughts(error_text::readAnswer(sent, response, chat_pollinations::readResponse));
}

async::Task<QString> PollinationsService::generateWithGLM(PollinationsModel model, ChatPrompt prompt,
                                                          JsonMode jsonMode) {
    auto request = chat_glm::buildRequest({.baseURL = endpoints_.glmBaseURL,
                                           .key = glmApiKey,
                                           .model = model,
                                           .prompt = std::move(prompt),
                                           .jsonMode = jsonMode});
    const auto sent = request.body;
    const auto response = co_await raceWithDeadline(raceDeadline, exchange(std::move(request)));
    co_return chat_wire::withoutThoughts(error_text::readAnswer(sent, response, chat_glm::readResponse));
}

async::Task<QString> PollinationsService::generateWithNvidia(PollinationsModel model, ChatPrompt prompt,
                                                             std::optional<std::vector<QByteArray>> images,
                                                             Thinking thinking) {
    auto request = chat_nvidia::buildRequest({.url = endpoints_.nvidiaChatCompletionsURL,
                                              .key = effectiveNvidiaApiKey(),
                                              .model = model,
                                              .prompt = std::move(prompt),
                                              .images = std::move(images),
                                              .thinking = thinking,
                                              .thinkEnabled = nvidiaThinkEnabled});
    const auto sent = request.body;
    const auto response = co_await exchange(std::move(request));
    co_return chat_wire::withoutThoughts(error_text::readAnswer(sent, response, chat_nvidia::readResponse));
}

async::Task<QString> PollinationsService::generateWithOllama(QString systemPrompt, QString userPrompt,
                                                             std::vector<QByteArray> images) {
    const bool cloud = ollamaMode == OllamaMode::cloud;
    auto request = chat_ollama::buildRequest(
        {.mode = ollamaMode,
         .url = cloud ? endpoints_.ollamaCloudChatURL : ollamaLocalEndpoint.value_or(endpoints_.ollamaLocalChatURL),
         .model = cloud ? ollamaCloudModel : ollamaLocalModel,
         .key = cloud ? ollamaCloudApiKey : ollamaLocalApiKey,
         .systemPrompt = std::move(systemPrompt),
         .userPrompt = std::move(userPrompt),
         .images = std::move(images)});
    if (asksLocalServer())
        request.requestTimeout = request.resourceTimeout = localDeadline;
    const auto sent = request.body;
    const auto response = co_await exchange(std::move(request));
    co_return chat_wire::withoutThoughts(error_text::readAnswer(sent, response, chat_ollama::readResponse));
}

async::Task<QString> PollinationsService::generateWithModel(PollinationsModel model, ChatPrompt prompt,
                                                            JsonMode jsonMode) {
    if (asksGatewayOnly())
        co_return co_await generateWithGateway(std::move(prompt), jsonMode);
    switch (chatProtocol(model)) {
        case ChatProtocol::GLM:
            co_return co_await generateWithGLM(model, std::move(prompt), jsonMode);
        case ChatProtocol::Nvidia:
            co_return co_await generateWithNvidia(model, std::move(prompt), std::nullopt, Thinking::AsConfigured);
        case ChatProtocol::Pollinations:
            break;
    }
    const bool capable = model == PollinationsModel::openai || model == PollinationsModel::gemini;
    co_return co_await generateWithPollinations(identifier(model), capable ? ImageCapability::Yes : ImageCapability::No,
                                                std::move(prompt), jsonMode);
}

async::Task<QString> PollinationsService::generateWithGateway(ChatPrompt prompt, JsonMode jsonMode) {
    if (!pollinationsVisionModelOverride || pollinationsVisionModelOverride->isEmpty())
        throw PollinationsError::configurationMissing(QStringLiteral("The model of your own server is missing"));
    const auto capable = prompt.image ? ImageCapability::Yes : ImageCapability::No;
    co_return co_await generateWithPollinations(*pollinationsVisionModelOverride, capable, std::move(prompt), jsonMode);
}

async::Task<QStringList> PollinationsService::fetchOllamaCloudModels() {
    const auto url = chat_wire::formUrl(endpoints_.ollamaCloudTagsURL);
    if (!url)
        throw PollinationsError::invalidURL();
    platform::HttpRequest request;
    request.url = *url;
    request.requestTimeout = chat_wire::requestTimeout;
    co_return error_text::readAnswer({}, co_await exchange(std::move(request)), chat_ollama::readModelList);
}

}  // namespace tavrelon::generation
