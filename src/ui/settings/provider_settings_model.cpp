#include "ui/settings/provider_settings_model.h"

#include "platform/web_origin.h"
#include "text/characters.h"
#include "ui/settings/provider_texts.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
using generation::OllamaMode;
using generation::PollinationsService;
using persistence::AppSettings;
namespace entries = persistence::defaults_keys;

ProviderSettingsModel::ProviderSettingsModel(Services services)
    : PageModel(services.storage, providerTexts),
      services_(services),
      selection_(u"nvidia"_s),
      cloudModels_(services.mainLoop, services.pollinations) {
    const auto stored = [this](QLatin1StringView entry) {
        return storage().userDefaults().string(entry).value_or(QString());
    };
    auto& defaults = storage().userDefaults();
    keys_ = {stored(entries::nvidiaApiKey), stored(entries::ollamaCloudApiKey),
             persistence::boundKey(defaults, entries::ollamaLocalApiKey, ollamaAddress()),
             persistence::boundKey(defaults, entries::pollinationsApiKey, pollinationsAddress())};
    connect(this, &PageModel::changed, &trial_, &ServiceTrial::forget);
    connect(&found_, &FoundServers::taken, this, [this] { select(u"pollinations"_s); });
}

QString ProviderSettingsModel::ollamaAddress() const {
    return text::trimmedOrAbsent(ollamaLocalEndpoint()).value_or(services_.pollinations.endpoints().ollamaLocalChatURL);
}

QString ProviderSettingsModel::pollinationsAddress() const {
    return PollinationsService::normalizedBaseURL(pollinationsBaseURL())
        .value_or(services_.pollinations.endpoints().pollinationsBaseURL);
}

void ProviderSettingsModel::handOnBoundKeys() {
    services_.pollinations.ollamaLocalApiKey = keys_.ollamaLocal.keyFor(ollamaAddress());
    services_.pollinations.pollinationsApiKey = keys_.pollinations.keyFor(pollinationsAddress());
}

QString ProviderSettingsModel::shownKey(const persistence::BoundKey& key, const QString& address) {
    return key.belongsTo(address) ? key.typed : QString();
}

QString ProviderSettingsModel::keyNote(const persistence::BoundKey& key, const QString& address) {
    if (text::isBlank(key.typed))
        return {};
    if (!key.belongsTo(address))
        return u"keyElsewhere"_s;
    return platform::isConfidential(QUrl(address)) ? QString() : u"keyUnencrypted"_s;
}

void ProviderSettingsModel::select(const QString& provider) {
    if (provider == selection_)
        return;
    selection_ = provider;
    Q_EMIT selectionChanged();
}

void ProviderSettingsModel::turnOffNvidia() {
    services_.pollinations.nvidiaEnabled = false;
    services_.pollinations.nvidiaApiKey.reset();
}

void ProviderSettingsModel::setEnableNvidiaLocal(bool enabled) {
    auto& service = services_.pollinations;
    storage().changeSettings([enabled](AppSettings& changed) {
        changed.enableNvidiaLocal = enabled;
        if (enabled)
            changed.enableOllamaVision = changed.enableCustomPollinations = false;
    });
    if (enabled)
        service.ollamaEnabled = service.pollinationsCustomEnabled = false;
    storage().saveSettings();
    service.nvidiaEnabled = enabled;
    service.nvidiaApiKey = enabled ? text::trimmedOrAbsent(keys_.nvidia) : std::nullopt;
}

void ProviderSettingsModel::setEnableOllamaVision(bool enabled) {
    auto& service = services_.pollinations;
    storage().changeSettings([enabled](AppSettings& changed) {
        changed.enableOllamaVision = enabled;
        if (enabled)
            changed.enableNvidiaLocal = changed.enableCustomPollinations = false;
    });
    if (enabled) {
        turnOffNvidia();
        service.pollinationsCustomEnabled = false;
    }
    storage().saveSettings();
    service.ollamaEnabled = enabled;
}

void ProviderSettingsModel::setEnableCustomPollinations(bool enabled) {
    auto& service = services_.pollinations;
    storage().changeSettings([enabled](AppSettings& changed) {
        changed.enableCustomPollinations = enabled;
        if (enabled)
            changed.enableOllamaVision = changed.enableNvidiaLocal = false;
    });
    if (enabled) {
        service.ollamaEnabled = false;
        turnOffNvidia();
    }
    storage().saveSettings();
    service.pollinationsCustomEnabled = enabled;
    handOnCustomPollinations();
}

void ProviderSettingsModel::setStaysWithGateway(bool stays) {
    services_.pollinations.fallBackToOtherServices = !stays;
    store([stays](AppSettings& changed) { changed.fallBackToOtherServices = !stays; });
}

void ProviderSettingsModel::handOnCustomPollinations() {
    auto& service = services_.pollinations;
    service.pollinationsBaseURLOverride = PollinationsService::normalizedBaseURL(pollinationsBaseURL());
    service.pollinationsImageModelOverride = PollinationsService::normalizedModelName(pollinationsImageModel());
    service.pollinationsVisionModelOverride = PollinationsService::normalizedModelName(pollinationsVisionModel());
    handOnBoundKeys();
}

QString ProviderSettingsModel::ollamaMode() const {
    return text::trimmed(settings().ollamaMode) == "local"_L1 ? u"local"_s : u"cloud"_s;
}

void ProviderSettingsModel::setOllamaMode(const QString& mode) {
    store([&mode](AppSettings& changed) { changed.ollamaMode = mode; });
    services_.pollinations.ollamaMode = ollamaMode() == "local"_L1 ? OllamaMode::local : OllamaMode::cloud;
}

void ProviderSettingsModel::setField(QString AppSettings::* field, const QString& typed, InUse inUse,
                                     Normalization normalized) {
    if (settings().*field == typed)
        return;
    store([&](AppSettings& changed) { changed.*field = typed; });
    services_.pollinations.*inUse = normalized(typed);
}

void ProviderSettingsModel::setOllamaCloudModel(const QString& typed) {
    setField(&AppSettings::ollamaCloudModel, typed, &PollinationsService::ollamaCloudModel, text::trimmedOrAbsent);
}

void ProviderSettingsModel::setOllamaLocalModel(const QString& typed) {
    setField(&AppSettings::ollamaLocalModel, typed, &PollinationsService::ollamaLocalModel, text::trimmedOrAbsent);
}

void ProviderSettingsModel::setOllamaLocalEndpoint(const QString& typed) {
    setField(&AppSettings::ollamaLocalEndpoint, typed, &PollinationsService::ollamaLocalEndpoint,
             text::trimmedOrAbsent);
    handOnBoundKeys();
}

void ProviderSettingsModel::setPollinationsBaseURL(const QString& typed) {
    setField(&AppSettings::pollinationsBaseURL, typed, &PollinationsService::pollinationsBaseURLOverride,
             PollinationsService::normalizedBaseURL);
    handOnBoundKeys();
}

void ProviderSettingsModel::setPollinationsImageModel(const QString& typed) {
    setField(&AppSettings::pollinationsImageModel, typed, &PollinationsService::pollinationsImageModelOverride,
             PollinationsService::normalizedModelName);
}

void ProviderSettingsModel::setPollinationsVisionModel(const QString& typed) {
    setField(&AppSettings::pollinationsVisionModel, typed, &PollinationsService::pollinationsVisionModelOverride,
             PollinationsService::normalizedModelName);
}

/// False when nothing changed.
bool ProviderSettingsModel::storeKey(QString Keys::* key, QLatin1StringView entry, const QString& typed) {
    if (keys_.*key == typed)
        return false;
    keys_.*key = typed;
    storage().notifySettingsChanged();
    storage().userDefaults().setString(entry, typed);
    Q_EMIT changed();
    return true;
}

void ProviderSettingsModel::storeKey(persistence::BoundKey Keys::* key, QLatin1StringView entry,
                                     const persistence::BoundKey& typed) {
    keys_.*key = typed;
    handOnBoundKeys();
    storage().notifySettingsChanged();
    persistence::storeBoundKey(storage().userDefaults(), entry, typed);
    Q_EMIT changed();
}

void ProviderSettingsModel::setNvidiaApiKey(const QString& typed) {
    if (storeKey(&Keys::nvidia, entries::nvidiaApiKey, typed) && enableNvidiaLocal())
        services_.pollinations.nvidiaApiKey = text::trimmedOrAbsent(typed);
}

void ProviderSettingsModel::setOllamaCloudApiKey(const QString& typed) {
    if (storeKey(&Keys::ollamaCloud, entries::ollamaCloudApiKey, typed))
        services_.pollinations.ollamaCloudApiKey = text::trimmedOrAbsent(typed);
}

void ProviderSettingsModel::setOllamaLocalApiKey(const QString& typed) {
    if (typed != ollamaLocalApiKey())
        storeKey(&Keys::ollamaLocal, entries::ollamaLocalApiKey, persistence::keyTypedFor(ollamaAddress(), typed));
}

void ProviderSettingsModel::setPollinationsApiKey(const QString& typed) {
    if (typed != pollinationsApiKey())
        storeKey(&Keys::pollinations, entries::pollinationsApiKey,
                 persistence::keyTypedFor(pollinationsAddress(), typed));
}

bool ProviderSettingsModel::nvidiaKeyMissing() const {
    return enableNvidiaLocal() && text::isBlank(keys_.nvidia);
}

bool ProviderSettingsModel::cloudKeyMissing() const {
    return text::isBlank(keys_.ollamaCloud);
}

bool ProviderSettingsModel::cloudModelMissing() const {
    return text::isBlank(ollamaCloudModel());
}

bool ProviderSettingsModel::baseURLMissing() const {
    return text::isBlank(pollinationsBaseURL());
}

bool ProviderSettingsModel::imageModelMissing() const {
    return text::isBlank(pollinationsImageModel());
}

bool ProviderSettingsModel::visionModelMissing() const {
    return text::isBlank(pollinationsVisionModel());
}

QString ProviderSettingsModel::nvidiaKeyPortal() {
    return u"https://build.nvidia.com/settings/api-keys"_s;
}

QString ProviderSettingsModel::pollinationsKeyPortal() {
    return u"https://enter.pollinations.ai"_s;
}

void ProviderSettingsModel::openNvidiaKeyPortal() {
    services_.workspace.openUrl(QUrl(nvidiaKeyPortal()));
}

void ProviderSettingsModel::openPollinationsKeyPortal() {
    services_.workspace.openUrl(QUrl(pollinationsKeyPortal()));
}

}  // namespace tavrelon::ui
