#include "ui/settings/provider_settings_model.h"

#include "app/provider_settings.h"
#include "platform/web_origin.h"
#include "text/characters.h"
#include "ui/settings/provider_texts.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
using generation::ServiceConfiguration;
using persistence::AppSettings;
using persistence::ServiceKeys;

ProviderSettingsModel::ProviderSettingsModel(Services services)
    : PageModel(services.storage, providerTexts),
      services_(services),
      selection_(u"nvidia"_s),
      cloudModels_(services.mainLoop, services.pollinations, [this] { return language(); }) {
    connect(this, &PageModel::changed, &trial_, &ServiceTrial::forget);
    connect(&found_, &FoundServers::taken, this, [this] { select(u"pollinations"_s); });
}

ServiceConfiguration ProviderSettingsModel::configuration() const {
    return app::serviceConfiguration(services_.pollinations.configuration.endpoints, settings(), storage().keys());
}

QString ProviderSettingsModel::ollamaAddress() const {
    const auto chosen = configuration();
    return chosen.ollamaLocalEndpoint.value_or(chosen.endpoints.ollamaLocalChatURL);
}

QString ProviderSettingsModel::pollinationsAddress() const {
    const auto chosen = configuration();
    return chosen.pollinationsBaseURLOverride.value_or(chosen.endpoints.pollinationsBaseURL);
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

void ProviderSettingsModel::enable(bool AppSettings::* provider, bool enabled) {
    store([&](AppSettings& changed) {
        if (enabled)
            changed.enableNvidiaLocal = changed.enableOllamaVision = changed.enableCustomPollinations = false;
        changed.*provider = enabled;
    });
}

void ProviderSettingsModel::setStaysWithGateway(bool stays) {
    store([stays](AppSettings& changed) { changed.fallBackToOtherServices = !stays; });
}

QString ProviderSettingsModel::ollamaMode() const {
    return text::trimmed(settings().ollamaMode) == "local"_L1 ? u"local"_s : u"cloud"_s;
}

void ProviderSettingsModel::setField(QString AppSettings::* field, const QString& typed) {
    if (settings().*field != typed)
        store([&](AppSettings& changed) { changed.*field = typed; });
}

void ProviderSettingsModel::setNvidiaApiKey(const QString& typed) {
    if (typed != nvidiaApiKey())
        storeKey(&ServiceKeys::nvidia, typed);
}

void ProviderSettingsModel::setOllamaCloudApiKey(const QString& typed) {
    if (typed != ollamaCloudApiKey())
        storeKey(&ServiceKeys::ollamaCloud, typed);
}

void ProviderSettingsModel::setOllamaLocalApiKey(const QString& typed) {
    if (typed != ollamaLocalApiKey())
        storeKey(&ServiceKeys::ollamaLocal, persistence::keyTypedFor(ollamaAddress(), typed));
}

void ProviderSettingsModel::setPollinationsApiKey(const QString& typed) {
    if (typed != pollinationsApiKey())
        storeKey(&ServiceKeys::pollinations, persistence::keyTypedFor(pollinationsAddress(), typed));
}

bool ProviderSettingsModel::nvidiaKeyMissing() const {
    return enableNvidiaLocal() && text::isBlank(nvidiaApiKey());
}

bool ProviderSettingsModel::cloudKeyMissing() const {
    return text::isBlank(ollamaCloudApiKey());
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
