#include "generation/service_configuration.h"

#include "generation/destinations.h"
#include "platform/web_origin.h"
#include "text/characters.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

QString sourceAt(const QString& model, const QString& address) {
    const auto host = QUrl(address).host();
    return host.isEmpty() ? model : model + u" ("_s + host + u')';
}

}  // namespace

std::vector<PollinationsModel> ServiceConfiguration::modelsFor(VisionModelPreference preference) {
    using enum PollinationsModel;
    if (preference == VisionModelPreference::quality)
        return {openai, glmVisionFlash, nvidiaNemotron};
    return {nvidiaNemotron, openai, glmVisionFlash};
}

std::optional<QString> ServiceConfiguration::normalizedBaseURL(const QString& typed) {
    auto url = text::trimmedOrAbsent(typed);
    while (url && url->endsWith(u'/'))
        url->chop(1);
    return url;
}

std::optional<QString> ServiceConfiguration::normalizedModelName(const QString& typed) {
    auto name = text::trimmedOrAbsent(typed);
    if (name == u"openai.pollinations"_s)
        return u"openai"_s;
    return name;
}

QString ServiceConfiguration::pollinationsBaseURL() const {
    if (pollinationsCustomEnabled && pollinationsBaseURLOverride)
        return *pollinationsBaseURLOverride;
    return endpoints.pollinationsBaseURL;
}

std::optional<QString> ServiceConfiguration::effectivePollinationsApiKey() const {
    return pollinationsCustomEnabled ? pollinationsApiKey : text::trimmedOrAbsent(endpoints.builtInPollinationsKey);
}

std::optional<QString> ServiceConfiguration::effectiveNvidiaApiKey() const {
    const bool own = nvidiaEnabled && nvidiaApiKey && !nvidiaApiKey->isEmpty();
    return text::trimmedOrAbsent(own ? *nvidiaApiKey : endpoints.builtInNvidiaApiKey);
}

std::optional<QString> ServiceConfiguration::glmApiKey() const {
    return text::trimmedOrAbsent(endpoints.builtInGLMKey);
}

QString ServiceConfiguration::ollamaChatURL() const {
    return ollamaMode == OllamaMode::cloud ? endpoints.ollamaCloudChatURL
                                           : ollamaLocalEndpoint.value_or(endpoints.ollamaLocalChatURL);
}

std::optional<QString> ServiceConfiguration::keyFor(const QUrl& url) const {
    if (platform::isWithinServer(url, QUrl(pollinationsBaseURL())))
        return effectivePollinationsApiKey();
    if (platform::isWithinServer(url, QUrl(endpoints.glmBaseURL)))
        return glmApiKey();
    return std::nullopt;
}

bool ServiceConfiguration::hasKeyFor(PollinationsModel model) const {
    switch (chatProtocol(model)) {
        case ChatProtocol::GLM:
            return glmApiKey().has_value();
        case ChatProtocol::Nvidia:
            return effectiveNvidiaApiKey().has_value();
        case ChatProtocol::Pollinations:
            break;
    }
    return true;
}

bool ServiceConfiguration::asksLocalServer() const {
    return ollamaEnabled ? isOllamaLocal() : isGatewayLocal();
}

bool ServiceConfiguration::isOllamaLocal() const {
    return ollamaMode == OllamaMode::local && !isPublic(QUrl(ollamaChatURL()));
}

bool ServiceConfiguration::isGatewayLocal() const {
    return pollinationsCustomEnabled && !isPublic(QUrl(pollinationsBaseURL()));
}

bool ServiceConfiguration::asksGatewayOnly() const {
    return pollinationsCustomEnabled && !fallBackToOtherServices.value_or(isPublic(QUrl(pollinationsBaseURL())));
}

std::vector<PollinationsModel> ServiceConfiguration::promptEnhancementModels() const {
    auto models = textModels;
    std::erase_if(models, [](PollinationsModel model) { return chatProtocol(model) == ChatProtocol::GLM; });
    return ownFirst(allowGLMFallbackForPromptEnhancement || models.empty() ? textModels : models);
}

bool ServiceConfiguration::asksOwnModel() const {
    return asksGatewayOnly() ||
           (pollinationsCustomEnabled && !pollinationsVisionModelOverride.value_or(QString()).isEmpty());
}

std::vector<PollinationsModel> ServiceConfiguration::ownFirst(std::vector<PollinationsModel> models) const {
    if (asksGatewayOnly())
        return {PollinationsModel::own};
    if (asksOwnModel())
        models.insert(models.begin(), PollinationsModel::own);
    return models;
}

QString ServiceConfiguration::imageModelName() const {
    const bool own = pollinationsCustomEnabled && !pollinationsImageModelOverride.value_or(QString()).isEmpty();
    return own ? *pollinationsImageModelOverride : identifier(imageModel);
}

QString ServiceConfiguration::sourceName(PollinationsModel model) const {
    if (model == PollinationsModel::own)
        return gatewaySourceName();
    switch (chatProtocol(model)) {
        case ChatProtocol::Nvidia:
            return sourceAt(displayName(model), endpoints.nvidiaChatCompletionsURL);
        case ChatProtocol::GLM:
            return sourceAt(displayName(model), endpoints.glmBaseURL);
        case ChatProtocol::Pollinations:
            break;
    }
    return sourceAt(displayName(model), pollinationsBaseURL());
}

QString ServiceConfiguration::gatewaySourceName() const {
    return sourceAt(pollinationsVisionModelOverride.value_or(QString()), pollinationsBaseURL());
}

QString ServiceConfiguration::ollamaSourceName() const {
    const auto& model = ollamaMode == OllamaMode::cloud ? ollamaCloudModel : ollamaLocalModel;
    return sourceAt(model.value_or(u"Ollama"_s), ollamaChatURL());
}

}  // namespace tavrelon::generation
