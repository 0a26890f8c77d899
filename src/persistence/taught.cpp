#include "persistence/taught.h"

#include <QUrl>
#include <algorithm>
#include <utility>
#include <vector>

#include "text/characters.h"

namespace tavrelon::persistence {

using namespace Qt::StringLiterals;

namespace {

/// Where the settings hold one of the two.
struct Place {
    std::vector<QString AppSettings::*> texts;
    QString AppSettings::* source;
    QString AppSettings::* provider;
    std::optional<AppSettings::Date> AppSettings::* date;
};

const Place& placeOf(Taught what) {
    using S = AppSettings;
    static const Place adaptivePrompt{{&S::adaptiveSystemPrompt},
                                      &S::adaptiveSystemPromptSource,
                                      &S::adaptiveSystemPromptProvider,
                                      &S::adaptiveSystemPromptUpdatedAt};
    static const Place cloneProfile{{&S::cloneSystemPrompt, &S::cloneLanguageStyle},
                                    &S::cloneSource,
                                    &S::cloneProvider,
                                    &S::cloneLanguageStyleUpdatedAt};
    return what == Taught::AdaptivePrompt ? adaptivePrompt : cloneProfile;
}

QString at(const QString& name, const QString& typedAddress, const QString& defaultAddress) {
    const auto address = text::trimmedOrAbsent(typedAddress).value_or(defaultAddress);
    const QUrl url(address.contains("://"_L1) ? address : "http://"_L1 + address);
    const auto host = url.port() < 0 ? url.host() : u"%1:%2"_s.arg(url.host()).arg(url.port());
    return host.isEmpty() ? name : name + u" ("_s + host + u')';
}

}  // namespace

QString providerOf(const AppSettings& settings) {
    if (settings.enableCustomPollinations)
        return at(u"Pollinations"_s, settings.pollinationsBaseURL, defaultPollinationsBaseURL());
    if (settings.enableNvidiaLocal)
        return u"NVIDIA"_s;
    if (!settings.enableOllamaVision)
        return at(u"Pollinations"_s, {}, defaultPollinationsBaseURL());
    return text::trimmed(settings.ollamaMode) == "local"_L1
               ? at(u"Ollama"_s, settings.ollamaLocalEndpoint, defaultOllamaLocalEndpoint())
               : u"Ollama Cloud"_s;
}

bool isTaught(const AppSettings& settings, Taught what) {
    return std::ranges::any_of(placeOf(what).texts, [&](auto text) { return !(settings.*text).isEmpty(); });
}

bool isSetAside(const AppSettings& settings, Taught what) {
    const auto& provider = settings.*placeOf(what).provider;
    return isTaught(settings, what) && !provider.isEmpty() && provider != providerOf(settings);
}

const QString& sourceOf(const AppSettings& settings, Taught what) {
    return settings.*placeOf(what).source;
}

void noteSource(AppSettings& settings, Taught what, const QString& source, const QString& provider) {
    settings.*placeOf(what).source = source;
    settings.*placeOf(what).provider = provider;
}

void keepTaught(AppSettings& settings, Taught what) {
    settings.*placeOf(what).provider = providerOf(settings);
}

TaughtRecord forgetTaught(AppSettings& settings, Taught what) {
    const auto& place = placeOf(what);
    TaughtRecord record;
    for (const auto text : place.texts)
        record.texts << std::exchange(settings.*text, {});
    record.source = std::exchange(settings.*place.source, {});
    record.provider = std::exchange(settings.*place.provider, {});
    record.date = std::exchange(settings.*place.date, {});
    return record;
}

void restoreTaught(AppSettings& settings, Taught what, const TaughtRecord& record) {
    if (isTaught(settings, what))
        return;
    const auto& place = placeOf(what);
    for (qsizetype i = 0; i < record.texts.size(); ++i)
        settings.*place.texts[static_cast<std::size_t>(i)] = record.texts[i];
    settings.*place.source = record.source;
    settings.*place.provider = record.provider;
    settings.*place.date = record.date;
}

bool adoptTaught(AppSettings& settings) {
    bool adopted = false;
    for (const auto what : {Taught::AdaptivePrompt, Taught::CloneProfile})
        if (isTaught(settings, what) && (settings.*placeOf(what).provider).isEmpty()) {
            keepTaught(settings, what);
            adopted = true;
        }
    return adopted;
}

}  // namespace tavrelon::persistence
