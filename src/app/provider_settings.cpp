#include "app/provider_settings.h"

#include "persistence/taught.h"
#include "text/characters.h"

namespace tavrelon::app {

using generation::OllamaMode;
using generation::PollinationsService;
using generation::ServiceConfiguration;
using generation::VisionModelPreference;
using persistence::AppSettings;

void enforceProviderExclusivity(persistence::StorageManager& storage) {
    const auto& settings = storage.settings();
    if (settings.enableCustomPollinations) {
        if (!settings.enableOllamaVision && !settings.enableNvidiaLocal)
            return;
        storage.changeSettings(
            [](AppSettings& changed) { changed.enableOllamaVision = changed.enableNvidiaLocal = false; });
    } else {
        if (!settings.enableNvidiaLocal || !settings.enableOllamaVision)
            return;
        storage.changeSettings([](AppSettings& changed) { changed.enableOllamaVision = false; });
    }
    storage.saveSettings();
}

void adoptWhatWasTaught(persistence::StorageManager& storage) {
    bool adopted = false;
    storage.changeSettings([&](AppSettings& changed) { adopted = persistence::adoptTaught(changed); });
    if (adopted)
        storage.saveSettings();
}

ServiceConfiguration serviceConfiguration(generation::ServiceEndpoints endpoints, const AppSettings& settings,
                                          const persistence::ServiceKeys& keys) {
    ServiceConfiguration made{.endpoints = std::move(endpoints)};
    made.pollinationsCustomEnabled = settings.enableCustomPollinations;
    made.fallBackToOtherServices = settings.fallBackToOtherServices;
    made.pollinationsBaseURLOverride = ServiceConfiguration::normalizedBaseURL(settings.pollinationsBaseURL);
    made.pollinationsImageModelOverride = ServiceConfiguration::normalizedModelName(settings.pollinationsImageModel);
    made.pollinationsVisionModelOverride = ServiceConfiguration::normalizedModelName(settings.pollinationsVisionModel);
    made.ownModelTakesPictures =
        settings.textOnlyModel.isEmpty() || settings.textOnlyModel != settings.pollinationsVisionModel;
    made.pollinationsApiKey =
        keys.pollinations.keyFor(made.pollinationsBaseURLOverride.value_or(made.endpoints.pollinationsBaseURL));

    made.ollamaEnabled = settings.enableOllamaVision;
    made.ollamaMode =
        text::trimmed(settings.ollamaMode) == QLatin1StringView("local") ? OllamaMode::local : OllamaMode::cloud;
    made.ollamaCloudModel = text::trimmedOrAbsent(settings.ollamaCloudModel);
    made.ollamaCloudApiKey = text::trimmedOrAbsent(keys.ollamaCloud);
    made.ollamaLocalModel = text::trimmedOrAbsent(settings.ollamaLocalModel);
    made.ollamaLocalEndpoint = text::trimmedOrAbsent(settings.ollamaLocalEndpoint);
    made.ollamaLocalApiKey =
        keys.ollamaLocal.keyFor(made.ollamaLocalEndpoint.value_or(made.endpoints.ollamaLocalChatURL));

    made.nvidiaEnabled = settings.enableNvidiaLocal;
    made.nvidiaApiKey = settings.enableNvidiaLocal ? text::trimmedOrAbsent(keys.nvidia) : std::nullopt;
    made.nvidiaThinkEnabled = settings.enableNvidiaThink;
    made.visionModels = ServiceConfiguration::modelsFor(settings.visionModelPreference == QLatin1StringView("quality")
                                                            ? VisionModelPreference::quality
                                                            : VisionModelPreference::speed);
    return made;
}

persistence::ChangeSubscription followSettings(const persistence::StorageManager& storage,
                                               PollinationsService& service) {
    const auto apply = [&storage, &service] {
        service.configuration =
            serviceConfiguration(service.configuration.endpoints, storage.settings(), storage.keys());
    };
    apply();
    return storage.onChange(apply);
}

void useServer(persistence::StorageManager& storage, const QString& baseURL, const generation::ServedModel& model) {
    storage.changeSettings([&](AppSettings& changed) {
        changed.pollinationsBaseURL = baseURL;
        changed.pollinationsVisionModel = model.name;
        changed.textOnlyModel = model.isTextOnly ? model.name : QString();
        changed.enableCustomPollinations = true;
        changed.enableOllamaVision = changed.enableNvidiaLocal = false;
        changed.fallBackToOtherServices.reset();  // what was said of another server does not hold for this one
    });
    storage.saveSettings();
}

}  // namespace tavrelon::app
