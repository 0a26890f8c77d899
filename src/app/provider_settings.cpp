#include "app/provider_settings.h"

#include "persistence/bound_key.h"
#include "persistence/taught.h"
#include "text/characters.h"

namespace tavrelon::app {

using generation::OllamaMode;
using generation::PollinationsService;
using generation::VisionModelPreference;
using persistence::AppSettings;

namespace {

std::optional<QString> storedKey(const platform::DefaultsStore& userDefaults, QLatin1StringView entry) {
    const auto key = userDefaults.string(entry);
    return key ? text::trimmedOrAbsent(*key) : std::nullopt;
}

std::optional<QString> storedKeyFor(const QString& address, platform::DefaultsStore& userDefaults,
                                    QLatin1StringView entry) {
    return persistence::boundKey(userDefaults, entry, address).keyFor(address);
}

}  // namespace

generation::ProviderKeys builtInKeys(const generation::ServiceEndpoints& endpoints) {
    return {endpoints.builtInPollinationsKey, endpoints.builtInGLMKey, std::nullopt};
}

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

void applyProviderSettings(const AppSettings& settings, platform::DefaultsStore& userDefaults,
                           PollinationsService& service) {
    namespace entries = persistence::defaults_keys;
    service.pollinationsCustomEnabled = settings.enableCustomPollinations;
    service.fallBackToOtherServices = settings.fallBackToOtherServices;
    service.pollinationsBaseURLOverride = PollinationsService::normalizedBaseURL(settings.pollinationsBaseURL);
    service.pollinationsImageModelOverride = PollinationsService::normalizedModelName(settings.pollinationsImageModel);
    service.pollinationsVisionModelOverride =
        PollinationsService::normalizedModelName(settings.pollinationsVisionModel);
    service.pollinationsApiKey =
        storedKeyFor(service.pollinationsBaseURLOverride.value_or(service.endpoints().pollinationsBaseURL),
                     userDefaults, entries::pollinationsApiKey);

    service.ollamaEnabled = settings.enableOllamaVision;
    service.ollamaMode =
        text::trimmed(settings.ollamaMode) == QLatin1StringView("local") ? OllamaMode::local : OllamaMode::cloud;
    service.ollamaCloudModel = text::trimmedOrAbsent(settings.ollamaCloudModel);
    service.ollamaCloudApiKey = storedKey(userDefaults, entries::ollamaCloudApiKey);
    service.ollamaLocalModel = text::trimmedOrAbsent(settings.ollamaLocalModel);
    service.ollamaLocalEndpoint = text::trimmedOrAbsent(settings.ollamaLocalEndpoint);
    service.ollamaLocalApiKey =
        storedKeyFor(service.ollamaLocalEndpoint.value_or(service.endpoints().ollamaLocalChatURL), userDefaults,
                     entries::ollamaLocalApiKey);

    service.nvidiaEnabled = settings.enableNvidiaLocal;
    service.nvidiaApiKey = settings.enableNvidiaLocal ? storedKey(userDefaults, entries::nvidiaApiKey) : std::nullopt;
    service.nvidiaThinkEnabled = settings.enableNvidiaThink;
    service.setVisionModelPreference(settings.visionModelPreference == QLatin1StringView("quality")
                                         ? VisionModelPreference::quality
                                         : VisionModelPreference::speed);
}

void useServer(persistence::StorageManager& storage, PollinationsService& service, const QString& baseURL,
               const generation::ServedModel& model) {
    storage.changeSettings([&](AppSettings& changed) {
        changed.pollinationsBaseURL = baseURL;
        changed.pollinationsVisionModel = model.name;
        changed.textOnlyModel = model.isTextOnly ? model.name : QString();
        changed.enableCustomPollinations = true;
        changed.enableOllamaVision = changed.enableNvidiaLocal = false;
    });
    storage.saveSettings();
    applyProviderSettings(storage.settings(), storage.userDefaults(), service);
}

}  // namespace tavrelon::app
