#include "generation/pollinations_service.h"

#include "generation/chat_glm.h"
#include "generation/chat_nvidia.h"
#include "generation/chat_ollama.h"
#include "generation/chat_pollinations.h"
#include "generation/chat_wire.h"
#include "generation/error_text.h"
#include "generation/image_wire.h"
#include "platform/web_origin.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

platform::HttpRequest imageGet(const QUrl& url, std::chrono::seconds timeout) {
    return {.url = url, .headers = {{"User-Agent", "Tavrelon/1.0"}}, .requestTimeout = timeout};
}

}  // namespace

async::Task<platform::HttpResponse> PollinationsService::exchange(platform::HttpRequest request) {
    if (configuration.asksGatewayOnly() &&
        !platform::isWithinServer(request.url, QUrl(configuration.pollinationsBaseURL())))
        throw PollinationsError::configurationMissing(
            {u"Requests stay with your own server"_s, u"请求只发往您自己的服务器"_s});
    request.staysAtOrigin |= configuration.asksGatewayOnly();
    auto answer = co_await session_.send(std::move(request));
    if (answer)
        co_return std::move(*answer);
    if (answer.error().code == platform::HttpError::Code::NotHttp)
        throw PollinationsError::invalidResponse();
    throw TransportError(answer.error());
}

async::Task<QString> PollinationsService::ask(platform::HttpRequest request, std::optional<std::chrono::seconds> limit,
                                              Read read) {
    const auto sent = request.body;
    auto exchanged = exchange(std::move(request));
    const auto response =
        limit ? co_await raceWithDeadline(*limit, std::move(exchanged)) : co_await std::move(exchanged);
    co_return chat_wire::withoutThoughts(error_text::readAnswer(sent, response, read));
}

async::Task<QString> PollinationsService::generateWithPollinations(QString model, ImageCapability imageCapable,
                                                                   ChatPrompt prompt, JsonMode jsonMode) {
    auto request = chat_pollinations::buildRequest({.baseURL = configuration.pollinationsBaseURL(),
                                                    .key = configuration.effectivePollinationsApiKey(),
                                                    .model = std::move(model),
                                                    .imageCapable = imageCapable,
                                                    .prompt = std::move(prompt),
                                                    .jsonMode = jsonMode});
    const bool isLocal = configuration.isGatewayLocal();
    if (isLocal)
        request.requestTimeout = request.resourceTimeout = localDeadline;
    co_return co_await ask(std::move(request), isLocal ? localDeadline : raceDeadline, chat_pollinations::readResponse);
}

async::Task<QString> PollinationsService::generateWithGLM(PollinationsModel model, ChatPrompt prompt,
                                                          JsonMode jsonMode) {
    co_return co_await ask(chat_glm::buildRequest({.baseURL = configuration.endpoints.glmBaseURL,
                                                   .key = configuration.glmApiKey(),
                                                   .model = model,
                                                   .prompt = std::move(prompt),
                                                   .jsonMode = jsonMode}),
                           raceDeadline, chat_glm::readResponse);
}

async::Task<QString> PollinationsService::generateWithNvidia(PollinationsModel model, ChatPrompt prompt,
                                                             std::optional<std::vector<QByteArray>> images,
                                                             Thinking thinking) {
    co_return co_await ask(chat_nvidia::buildRequest({.url = configuration.endpoints.nvidiaChatCompletionsURL,
                                                      .key = configuration.effectiveNvidiaApiKey(),
                                                      .model = model,
                                                      .prompt = std::move(prompt),
                                                      .images = std::move(images),
                                                      .thinking = thinking,
                                                      .thinkEnabled = configuration.nvidiaThinkEnabled}),
                           std::nullopt, chat_nvidia::readResponse);
}

async::Task<QString> PollinationsService::generateWithOllama(QString systemPrompt, QString userPrompt,
                                                             std::vector<QByteArray> images) {
    const bool cloud = configuration.ollamaMode == OllamaMode::cloud;
    auto request =
        chat_ollama::buildRequest({.mode = configuration.ollamaMode,
                                   .url = configuration.ollamaChatURL(),
                                   .model = cloud ? configuration.ollamaCloudModel : configuration.ollamaLocalModel,
                                   .key = cloud ? configuration.ollamaCloudApiKey : configuration.ollamaLocalApiKey,
                                   .systemPrompt = std::move(systemPrompt),
                                   .userPrompt = std::move(userPrompt),
                                   .images = std::move(images)});
    if (configuration.isOllamaLocal())
        request.requestTimeout = request.resourceTimeout = localDeadline;
    co_return co_await ask(std::move(request), std::nullopt, chat_ollama::readResponse);
}

async::Task<QString> PollinationsService::generateWithGateway(ChatPrompt prompt, JsonMode jsonMode) {
    const auto& model = configuration.pollinationsVisionModelOverride;
    if (!model || model->isEmpty())
        throw PollinationsError::configurationMissing(
            {u"The model of your own server is missing"_s, u"未填写自有服务器的模型"_s});
    const auto capable = prompt.image ? ImageCapability::Yes : ImageCapability::No;
    co_return co_await generateWithPollinations(*model, capable, std::move(prompt), jsonMode);
}

async::Task<QString> PollinationsService::generateWithModel(PollinationsModel model, ChatPrompt prompt,
                                                            JsonMode jsonMode) {
    if (model == PollinationsModel::own)
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

async::Task<QStringList> PollinationsService::fetchOllamaCloudModels() {
    const auto url = chat_wire::formUrl(configuration.endpoints.ollamaCloudTagsURL);
    if (!url)
        throw PollinationsError::invalidURL();
    platform::HttpRequest request{.url = *url, .requestTimeout = chat_wire::requestTimeout};
    co_return error_text::readAnswer({}, co_await exchange(std::move(request)), chat_ollama::readModelList);
}

async::Task<QByteArray> PollinationsService::generateImageWithPollinations(QString prompt) {
    const auto url =
        image_wire::pollinationsUrl(configuration.pollinationsBaseURL(), prompt, configuration.imageModelName());
    // The path is the prompt, and no line tells what the user wrote.
    log_.line("[Pollinations] Generating image at "_L1 + url.host());
    auto request = imageGet(url, std::chrono::seconds(120));
    if (configuration.isGatewayLocal())
        request.requestTimeout = request.resourceTimeout = localDeadline;
    chat_wire::authorize(request, configuration.effectivePollinationsApiKey());
    auto image = image_wire::readPollinationsImage(co_await exchange(std::move(request)));
    log_.line(u"[Pollinations] Image generated successfully: %1 bytes"_s.arg(image.size()));
    co_return image;
}

async::Task<QByteArray> PollinationsService::generateImageWithGLM(QString prompt, int width, int height,
                                                                  QString quality) {
    auto request = image_wire::buildGLMRequest({.baseURL = configuration.endpoints.glmBaseURL,
                                                .key = configuration.glmApiKey(),
                                                .model = glmImageModel,
                                                .prompt = std::move(prompt),
                                                .width = width,
                                                .height = height,
                                                .quality = std::move(quality)});
    const auto sent = request.body;
    auto found = error_text::readAnswer(sent, co_await exchange(std::move(request)), image_wire::readGLMAnswer);
    if (auto* image = std::get_if<QByteArray>(&found))
        co_return std::move(*image);
    co_return co_await downloadImage(std::get<QUrl>(found));
}

async::Task<QByteArray> PollinationsService::downloadImage(QUrl url) {
    auto request = imageGet(url, chat_wire::requestTimeout);
    chat_wire::authorize(request, configuration.keyFor(url));
    const auto response = co_await raceWithDeadline(raceDeadline, exchange(std::move(request)));
    co_return image_wire::readDownload(response);
}

}  // namespace tavrelon::generation
