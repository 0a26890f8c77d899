#pragma once

#include "async/waits.h"
#include "generation/chat_prompt.h"
#include "generation/pollinations_error.h"
#include "generation/service_configuration.h"
#include "platform/http_session.h"
#include "platform/log.h"

namespace tavrelon::generation {

/// Through this object every model call leaves the machine: each operation is one call of one model, without fall-back
/// or retry. What asks one model after another is in `text_chain.h` and `image_prompt_enhancement.h`. Main thread; it
/// outlives the tasks it gives out.
///
/// Operations throw `PollinationsError`, `KeyRefused`, `TransportError`, `text::JsonError` (all of them
/// `text::LocalizedError`), or `async::CancellationError` when the awaiting task was asked to stop.
class PollinationsService {
 public:
    static constexpr std::chrono::seconds raceDeadline{30};
    static constexpr std::chrono::seconds localDeadline{300};  ///< there a model may have to be loaded first
    static constexpr QLatin1StringView glmImageModel{"cogview-3-flash"};

    /// The others outlive this object.
    PollinationsService(async::MainLoop& mainLoop, platform::HttpSession& session, platform::Log& log,
                        ServiceEndpoints endpoints)
        : configuration{.endpoints = std::move(endpoints)}, mainLoop_(mainLoop), session_(session), log_(log) {}

    /// A request in flight reads it as it goes.
    ServiceConfiguration configuration;

    // Texts.
    async::Task<QString> generateWithPollinations(QString model, ImageCapability imageCapable, ChatPrompt prompt,
                                                  JsonMode jsonMode);
    async::Task<QString> generateWithGLM(PollinationsModel model, ChatPrompt prompt, JsonMode jsonMode);
    async::Task<QString> generateWithNvidia(PollinationsModel model, ChatPrompt prompt,
                                            std::optional<std::vector<QByteArray>> images, Thinking thinking);
    async::Task<QString> generateWithOllama(QString systemPrompt, QString userPrompt, std::vector<QByteArray> images);

    /// The user's own model at the user's own gateway.
    async::Task<QString> generateWithGateway(ChatPrompt prompt, JsonMode jsonMode);

    /// By the protocol that the model speaks, as every walk asks it.
    async::Task<QString> generateWithModel(PollinationsModel model, ChatPrompt prompt, JsonMode jsonMode);

    // Images, as the service gave them: nothing checks that the bytes are a picture.
    async::Task<QByteArray> generateImageWithPollinations(QString prompt);
    async::Task<QByteArray> generateImageWithGLM(QString prompt, int width, int height, QString quality);

    /// A key goes along only to the server of the service that it belongs to and those below its name.
    async::Task<QByteArray> downloadImage(QUrl url);

    /// The names of the models in the Ollama cloud, sorted, each once.
    async::Task<QStringList> fetchOllamaCloudModels();

    /// Awaits `request` for at most `limit`; past it the request is ended and `requestTimedOut` thrown.
    template <typename T>
    async::Task<T> raceWithDeadline(std::chrono::nanoseconds limit, async::Task<T> request);

    /// Sends the request. Throws `invalidResponse` for what is no HTTP, `TransportError` for no answer at all, and
    /// `configurationMissing` where it would leave the gateway that alone may be asked.
    async::Task<platform::HttpResponse> exchange(platform::HttpRequest request);

    /// The longest that the service that the user chose may take for one answer.
    std::chrono::seconds deadline() const { return configuration.asksLocalServer() ? localDeadline : raceDeadline; }

    platform::Log& log() const { return log_; }

 private:
    using Read = QString (*)(const platform::HttpResponse&);
    async::Task<QString> ask(platform::HttpRequest request, std::optional<std::chrono::seconds> limit, Read read);

    async::MainLoop& mainLoop_;
    platform::HttpSession& session_;
    platform::Log& log_;
};

template <typename T>
async::Task<T> PollinationsService::raceWithDeadline(std::chrono::nanoseconds limit, async::Task<T> request) {
    try {
        co_return co_await async::raceWithDeadline(mainLoop_, limit, std::move(request));
    } catch (const async::DeadlineExceeded&) {
        throw PollinationsError::requestTimedOut();
    }
}

}  // namespace tavrelon::generation
