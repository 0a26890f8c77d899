#pragma once

#include <optional>
#include <vector>

#include "async/waits.h"
#include "generation/chat_prompt.h"
#include "generation/pollinations_error.h"
#include "generation/pollinations_model.h"
#include "generation/service_endpoints.h"
#include "platform/http_session.h"
#include "platform/log.h"

namespace tavrelon::generation {

/// The keys that the service is made with; each is trimmed, and absent when nothing is left of it.
struct ProviderKeys {
    std::optional<QString> defaultPollinationsApiKey;
    std::optional<QString> glmApiKey;
    std::optional<QString> nvidiaApiKey;
};

/// A model's text and who wrote it, by the names of the model and of its host.
struct ModelAnswer {
    QString text;
    QString source;
};

/// Through this object every model call leaves the machine. It holds the addresses, the keys, the model lists and the
/// rules of fall-back. Main thread; it outlives the tasks it gives out.
///
/// Operations throw `PollinationsError`, `KeyRefused`, `TransportError`, `text::JsonError` (all of them
/// `text::LocalizedError`), or `async::CancellationError` when the awaiting task was asked to stop; a walk over models
/// ends there at once.
class PollinationsService {
 public:
    static constexpr std::chrono::seconds raceDeadline{30};
    static constexpr std::chrono::seconds localDeadline{300};  ///< there a model may have to be loaded first
    static constexpr QLatin1StringView glmImageModel{"cogview-3-flash"};

    PollinationsService(async::MainLoop& mainLoop, platform::HttpSession& session, platform::Log& log,
                        ServiceEndpoints endpoints, const ProviderKeys& keys);

    // The user's configuration. A request in flight reads it as it goes.
    std::optional<QString> pollinationsApiKey;
    std::optional<QString> glmApiKey;
    std::optional<QString> nvidiaApiKey;
    bool nvidiaEnabled = false;
    bool nvidiaThinkEnabled = false;
    bool ollamaEnabled = false;
    OllamaMode ollamaMode = OllamaMode::cloud;
    std::optional<QString> ollamaCloudModel;
    std::optional<QString> ollamaCloudApiKey;
    std::optional<QString> ollamaLocalModel;
    std::optional<QString> ollamaLocalEndpoint;
    std::optional<QString> ollamaLocalApiKey;
    bool pollinationsCustomEnabled = false;
    std::optional<QString> pollinationsBaseURLOverride;
    std::optional<QString> pollinationsImageModelOverride;
    std::optional<QString> pollinationsVisionModelOverride;
    /// Whether other services are asked where the user's gateway does not answer. Where the user has not said, they are
    /// for a public gateway, and are not for one on this machine or in a private network.
    std::optional<bool> fallBackToOtherServices;
    PollinationsModel imageModel = PollinationsModel::zimage;
    bool allowGLMFallbackForPromptEnhancement = false;

    // The lists that walks go through, first to last.
    std::vector<PollinationsModel> textModels;
    std::vector<PollinationsModel> visionModels;

    VisionModelPreference visionModelPreference() const { return visionModelPreference_; }

    /// Stores the preference and rebuilds `visionModels`.
    void setVisionModelPreference(VisionModelPreference preference);
    void rebuildVisionModels();

    /// Asks the configured chain of models until one answers. An empty text is an answer. Throws the error of the
    /// first that was asked, or `allModelsFailed` when none was.
    async::Task<QString> generateText(QString systemPrompt, QString userPrompt, std::optional<QByteArray> image,
                                      qint64 maxTokens, float temperature);

    /// The same, where it matters who answers.
    async::Task<ModelAnswer> answerText(QString systemPrompt, QString userPrompt, std::optional<QByteArray> image,
                                        qint64 maxTokens, float temperature);

    /// The model and the host that it is asked at, as the user may read it.
    QString sourceName(PollinationsModel model) const;

    // One call of one model. No fall-back, no retry.
    async::Task<QString> generateWithPollinations(QString model, ImageCapability imageCapable, ChatPrompt prompt,
                                                  JsonMode jsonMode);
    async::Task<QString> generateWithGLM(PollinationsModel model, ChatPrompt prompt, JsonMode jsonMode);
    async::Task<QString> generateWithNvidia(PollinationsModel model, ChatPrompt prompt,
                                            std::optional<std::vector<QByteArray>> images, Thinking thinking);
    async::Task<QString> generateWithOllama(QString systemPrompt, QString userPrompt, std::vector<QByteArray> images);

    /// One call by the protocol that the model speaks, as every walk makes it.
    async::Task<QString> generateWithModel(PollinationsModel model, ChatPrompt prompt, JsonMode jsonMode);

    /// One frame of a video for the models that take a single image. `previousError` is what failed before, if anything
    /// was asked, and is thrown again when these fail too; else the first of their own failures is.
    async::Task<QString> generateVideoFallback(std::exception_ptr previousError, QByteArray frame, QString systemPrompt,
                                               QString userPrompt, qint64 maxTokens, float temperature);

    // Image prompts. Failures of models end in a fall-back and are not thrown, but for a `KeyRefused`.
    async::Task<QString> enhanceImagePrompt(QString text, PromptSafety safety);
    async::Task<std::optional<QString>> generatePromptTemplate(QString text, PromptSafety safety);
    async::Task<std::optional<QString>> optimizeImagePrompt(QString text, PromptSafety safety);

    /// The models that write image prompts: the text models without those of GLM, unless these are allowed or alone.
    std::vector<PollinationsModel> promptEnhancementModels() const;

    // Images, as the service gave them: nothing checks that the bytes are a picture.
    async::Task<QByteArray> generateImageWithPollinations(QString prompt);
    async::Task<QByteArray> generateImageWithGLM(QString prompt, int width, int height, QString quality);

    /// A key goes along only to the server of the service that it belongs to and those below its name.
    async::Task<QByteArray> downloadImage(QUrl url);

    /// The names of the models in the Ollama cloud, sorted, each once.
    async::Task<QStringList> fetchOllamaCloudModels();

    /// The models of `list` that can be asked, in order: with an image only those that take one.
    static std::vector<PollinationsModel> availableModels(const std::vector<PollinationsModel>& list,
                                                          const std::optional<QByteArray>& image);

    /// Awaits `request` for at most `limit`; past it the request is ended and `requestTimedOut` thrown.
    template <typename T>
    async::Task<T> raceWithDeadline(std::chrono::nanoseconds limit, async::Task<T> request);

    /// Sends the request. Throws `invalidResponse` for what is no HTTP, `TransportError` for no answer at all, and
    /// `configurationMissing` where it would leave the gateway that alone may be asked.
    async::Task<platform::HttpResponse> exchange(platform::HttpRequest request);

    /// Trimmed, without any trailing "/"; absent when empty.
    static std::optional<QString> normalizedBaseURL(const QString& typed);

    /// Trimmed; absent when empty; "openai.pollinations" is "openai".
    static std::optional<QString> normalizedModelName(const QString& typed);

    /// The user's gateway while custom mode is on and one is set, else the default one.
    QString pollinationsBaseURL() const;

    /// The user's key while custom mode is on, else the built-in one.
    std::optional<QString> effectivePollinationsApiKey() const;

    /// The user's NVIDIA key if there is one and NVIDIA is on, else the built-in one.
    std::optional<QString> effectiveNvidiaApiKey() const;

    /// Whether there is the key that the model's service wants.
    bool hasKeyFor(PollinationsModel model) const;

    /// Whether the service that the user chose is on this machine or in a private network.
    bool asksLocalServer() const;

    /// Whether every request goes to the user's gateway or nowhere. What would go elsewhere is not sent.
    bool asksGatewayOnly() const;

    const ServiceEndpoints& endpoints() const { return endpoints_; }

 private:
    std::optional<QString> keyFor(const QUrl& url) const;
    async::Task<QString> generateWithGateway(ChatPrompt prompt, JsonMode jsonMode);
    async::Task<std::optional<QString>> customModelText(ChatPrompt prompt, QString& source, std::exception_ptr& reason);
    async::Task<std::optional<QString>> firstWalk(ChatPrompt prompt, QString& source, std::exception_ptr& reason);
    async::Task<std::optional<QString>> walkWithoutImage(ChatPrompt prompt, QString& source,
                                                         std::exception_ptr& reason);

    async::MainLoop& mainLoop_;
    platform::HttpSession& session_;
    platform::Log& log_;
    ServiceEndpoints endpoints_;
    std::optional<QString> defaultPollinationsApiKey_;
    VisionModelPreference visionModelPreference_ = VisionModelPreference::speed;
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
