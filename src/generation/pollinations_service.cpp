#include "generation/pollinations_service.h"

#include "generation/destinations.h"
#include "platform/web_origin.h"

#include "text/characters.h"

namespace tavrelon::generation {

namespace {

const std::vector defaultModels{PollinationsModel::nvidiaNemotron, PollinationsModel::openai,
                                PollinationsModel::glmVisionFlash};

std::optional<QString> cleanKey(const std::optional<QString>& key) {
    return key ? text::trimmedOrAbsent(*key) : std::nullopt;
}

}  // namespace

PollinationsService::PollinationsService(async::MainLoop& mainLoop, platform::HttpSession& session, platform::Log& log,
                                         ServiceEndpoints endpoints, const ProviderKeys& keys)
    : glmApiKey(cleanKey(keys.glmApiKey)),
      nvidiaApiKey(cleanKey(keys.nvidiaApiKey)),
      nvidiaEnabled(nvidiaApiKey.has_value()),
      textModels(defaultModels),
      visionModels(defaultModels),
      mainLoop_(mainLoop),
      session_(session),
      log_(log),
      endpoints_(std::move(endpoints)),
      defaultPollinationsApiKey_(cleanKey(keys.defaultPollinationsApiKey)) {}

void PollinationsService::setVisionModelPreference(VisionModelPreference preference) {
    visionModelPreference_ = preference;
    rebuildVisionModels();
}

void PollinationsService::rebuildVisionModels() {
    visionModels = defaultModels;
    if (visionModelPreference_ != VisionModelPreference::quality)
        return;
    std::erase(visionModels, PollinationsModel::nvidiaNemotron);
    visionModels.push_back(PollinationsModel::nvidiaNemotron);
}

std::vector<PollinationsModel> PollinationsService::availableModels(const std::vector<PollinationsModel>& list,
                                                                    const std::optional<QByteArray>& image) {
    auto kept = list;
    if (image)
        std::erase_if(kept, [](PollinationsModel model) {
            return model != PollinationsModel::openai && model != PollinationsModel::gemini &&
                   model != PollinationsModel::nvidiaNemotron && model != PollinationsModel::glmVision;
        });
    return kept;
}

async::Task<platform::HttpResponse> PollinationsService::exchange(platform::HttpRequest request) {
    if (asksGatewayOnly() && !platform::isWithinServer(request.url, QUrl(pollinationsBaseURL())))
        throw PollinationsError::configurationMissing(QStringLiteral("Requests stay with your own server"));
    auto answer = co_await session_.send(std::move(request));
    if (answer)
        co_return std::move(*answer);
    if (answer.error().code == platform::HttpError::Code::NotHttp)
        throw PollinationsError::invalidResponse();
    throw TransportError(answer.error());
}

std::optional<QString> PollinationsService::normalizedBaseURL(const QString& typed) {
    auto url = text::trimmedOrAbsent(typed);
    while (url && url->endsWith(u'/'))
        url->chop(1);
    return url;
}

std::optional<QString> PollinationsService::normalizedModelName(const QString& typed) {
    auto name = text::trimmedOrAbsent(typed);
    if (name == QStringLiteral("openai.pollinations"))
        return QStringLiteral("openai");
    return name;
}

bool PollinationsService::hasKeyFor(PollinationsModel model) const {
    if (asksGatewayOnly())
        return true;  // it is the gateway that is asked, whatever the model is called
    switch (chatProtocol(model)) {
        case ChatProtocol::GLM:
            return glmApiKey.has_value();
        case ChatProtocol::Nvidia:
            return effectiveNvidiaApiKey().has_value();
        case ChatProtocol::Pollinations:
            break;
    }
    return true;
}

bool PollinationsService::asksLocalServer() const {
    if (ollamaEnabled)
        return ollamaMode == OllamaMode::local &&
               !isPublic(QUrl(ollamaLocalEndpoint.value_or(endpoints_.ollamaLocalChatURL)));
    return pollinationsCustomEnabled && !isPublic(QUrl(pollinationsBaseURL()));
}

bool PollinationsService::asksGatewayOnly() const {
    return pollinationsCustomEnabled && !fallBackToOtherServices.value_or(isPublic(QUrl(pollinationsBaseURL())));
}

QString PollinationsService::pollinationsBaseURL() const {
    if (pollinationsCustomEnabled && pollinationsBaseURLOverride)
        return *pollinationsBaseURLOverride;
    return endpoints_.pollinationsBaseURL;
}

std::optional<QString> PollinationsService::effectivePollinationsApiKey() const {
    return pollinationsCustomEnabled ? pollinationsApiKey : defaultPollinationsApiKey_;
}

std::optional<QString> PollinationsService::effectiveNvidiaApiKey() const {
    const bool own = nvidiaEnabled && nvidiaApiKey && !nvidiaApiKey->isEmpty();
    return text::trimmedOrAbsent(own ? *nvidiaApiKey : endpoints_.builtInNvidiaApiKey);
}

}  // namespace tavrelon::generation
