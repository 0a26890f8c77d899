#pragma once

#include <QUrl>
#include <optional>
#include <vector>

#include "generation/pollinations_model.h"
#include "generation/service_endpoints.h"

namespace tavrelon::generation {

/// Which services answer, by which models and with which keys: where they are, what the user chose, and the questions
/// that follow from both. A value without a life of its own.
struct ServiceConfiguration {
    ServiceEndpoints endpoints;

    std::optional<QString> pollinationsApiKey{};
    std::optional<QString> nvidiaApiKey{};
    bool nvidiaEnabled = false;
    bool nvidiaThinkEnabled = false;
    bool ollamaEnabled = false;
    OllamaMode ollamaMode = OllamaMode::cloud;
    std::optional<QString> ollamaCloudModel{};
    std::optional<QString> ollamaCloudApiKey{};
    std::optional<QString> ollamaLocalModel{};
    std::optional<QString> ollamaLocalEndpoint{};
    std::optional<QString> ollamaLocalApiKey{};
    bool pollinationsCustomEnabled = false;
    std::optional<QString> pollinationsBaseURLOverride{};
    std::optional<QString> pollinationsImageModelOverride{};
    std::optional<QString> pollinationsVisionModelOverride{};
    bool ownModelTakesPictures = true;
    /// Whether other services are asked where the user's gateway does not answer. Where the user has not said, they are
    /// for a public gateway, and are not for one on this machine or in a private network.
    std::optional<bool> fallBackToOtherServices{};
    PollinationsModel imageModel = PollinationsModel::zimage;
    bool allowGLMFallbackForPromptEnhancement = false;

    // The lists that walks go through, first to last.
    std::vector<PollinationsModel> textModels = modelsFor(VisionModelPreference::speed);
    std::vector<PollinationsModel> visionModels = modelsFor(VisionModelPreference::speed);

    static std::vector<PollinationsModel> modelsFor(VisionModelPreference preference);

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

    /// The built-in one.
    std::optional<QString> glmApiKey() const;

    /// Where Ollama is asked, in the mode that is chosen.
    QString ollamaChatURL() const;

    /// The key of the service that this address belongs to, by its server and those below its name.
    std::optional<QString> keyFor(const QUrl& url) const;

    /// Whether there is the key that the model's service wants.
    bool hasKeyFor(PollinationsModel model) const;

    /// Whether the service that the user chose is on this machine or in a private network.
    bool asksLocalServer() const;
    bool isOllamaLocal() const;
    bool isGatewayLocal() const;

    /// Whether every request goes to the user's gateway or nowhere. What would go elsewhere is not sent.
    bool asksGatewayOnly() const;

    /// Whether the user's own model at their own gateway is asked first.
    bool asksOwnModel() const;

    /// Where the user has a model of their own that is asked before `models`, or alone.
    std::vector<PollinationsModel> ownFirst(std::vector<PollinationsModel> models) const;

    /// The models that write image prompts: the user's own, and the text models without those of GLM, unless these are
    /// allowed or alone.
    std::vector<PollinationsModel> promptEnhancementModels() const;

    /// The model that draws, as the gateway knows it.
    QString imageModelName() const;

    /// The model and the host that it is asked at, as the user may read it.
    QString sourceName(PollinationsModel model) const;

    /// The model of Ollama that is chosen, and its host.
    QString ollamaSourceName() const;

    /// The user's own model and its host.
    QString gatewaySourceName() const;
};

}  // namespace tavrelon::generation
