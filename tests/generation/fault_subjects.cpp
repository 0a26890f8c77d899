#include "generation/fault_subjects.h"

#include <algorithm>

namespace tavrelon::testing {

using namespace Qt::StringLiterals;
using Place = FaultSubject::Place;
using Told = FaultSubject::Told;

const std::vector<FaultSubject>& faultSubjects() {
    using enum AnswerShape;
    static const std::vector<FaultSubject> subjects{
        {Place::NvidiaChat, u"NVIDIA chat"_s, u"/nvidia"_s, u"/nvidia"_s, "nvidia", ChatCompletion,
         u"Pollinations chat"_s, Told::ToTheUserWhenAlone},
        {Place::GatewayChat, u"Pollinations chat"_s, u"/gateway"_s, u"/gateway/v1"_s, "gateway", ChatCompletion,
         u"GLM chat"_s, Told::ToTheUserWhenAlone},
        {Place::GLMChat, u"GLM chat"_s, u"/glm"_s, u"/glm/chat"_s, "glm", GLMChat, {}, Told::ToTheUser},
        {Place::CustomGateway, u"Custom gateway chat"_s, u"/custom"_s, u"/custom"_s, "custom", ChatCompletion,
         u"NVIDIA chat"_s, Told::InTheLog, u"[Pollinations] Custom Pollinations model failed: "_s},
        {Place::OllamaCloud,
         u"Ollama cloud chat"_s,
         u"/ollama/api/chat"_s,
         u"/ollama"_s,
         "ollama",
         OllamaChat,
         {},
         Told::ToTheUser},
        {Place::OllamaLocal,
         u"Ollama local chat"_s,
         u"/local/api/chat"_s,
         u"/local"_s,
         "ollama",
         OllamaChat,
         {},
         Told::ToTheUser},
        {Place::ImageGet, u"Pollinations image"_s, u"/gateway"_s, u"/gateway/image/"_s, "gateway", Picture,
         u"GLM images"_s, Told::InTheLog, u"[Pollinations] Image generation failed with Pollinations: "_s},
        {Place::GLMImages, u"GLM images"_s, u"/glm"_s, u"/glm/images"_s, "glm", GLMImages, {}, Told::ToTheUser},
        {Place::Download,
         u"Image download"_s,
         u"/files/cat.png"_s,
         u"/files"_s,
         "gateway",
         Download,
         {},
         Told::ToTheUser}};
    return subjects;
}

std::optional<QString> secretKeyOf(QLatin1StringView service) {
    return secretPrefix + service;
}

generation::GenerationRequest requestFor(Place place) {
    const bool draws = place == Place::ImageGet || place == Place::GLMImages || place == Place::Download;
    generation::GenerationRequest request{.input = draws ? u"draw a cat"_s : u"hello"_s};
    if (place == Place::OllamaCloud || place == Place::OllamaLocal) {
        request.context.emplace();
        request.context->screenshotData = QByteArray("\xff\xd8");
    }
    return request;
}

void configureFor(Place place, generation::PollinationsService& gateway, const QString& address, bool alone) {
    using enum generation::PollinationsModel;
    if (place == Place::CustomGateway) {
        gateway.pollinationsCustomEnabled = true;
        gateway.pollinationsBaseURLOverride = address;
        gateway.pollinationsVisionModelOverride = u"own-model"_s;
        gateway.pollinationsApiKey = secretKeyOf("custom"_L1);
    }
    gateway.ollamaEnabled = place == Place::OllamaCloud || place == Place::OllamaLocal;
    gateway.ollamaMode = place == Place::OllamaLocal ? generation::OllamaMode::local : generation::OllamaMode::cloud;
    gateway.ollamaCloudModel = gateway.ollamaLocalModel = u"llava"_s;
    gateway.ollamaCloudApiKey = gateway.ollamaLocalApiKey = secretKeyOf("ollama"_L1);
    gateway.ollamaLocalEndpoint = address;
    if (place == Place::GatewayChat)
        gateway.textModels = {openai, glmVisionFlash};
    else if (place == Place::GLMChat)
        gateway.textModels = {glmVisionFlash};
    if (alone)
        gateway.textModels.resize(1);
}

const FaultSubject* faultSubjectOf(const QString& path) {
    const auto found = std::ranges::find_if(faultSubjects(), [&](const auto& one) { return path.contains(one.path); });
    return found == faultSubjects().end() ? nullptr : &*found;
}

}  // namespace tavrelon::testing
