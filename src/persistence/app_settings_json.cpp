#include <cmath>

#include "persistence/settings_fields.h"
#include "text/characters.h"

namespace tavrelon::persistence {

namespace {

using text::Json;

/// The one silence time of older documents, from before voice input and dictation each had their own.
constexpr const char* legacySilenceKey = "voiceSilenceTimeoutSeconds";

void put(Json& json, const char* key, const keys::HotkeyConfig& value) {
    json[key] = keys::toJson(value);
}

void put(Json& json, const char* key, bool value) {
    json[key] = value;
}

void put(Json& json, const char* key, double value) {
    if (!std::isfinite(value))
        throw text::JsonError(QStringLiteral("The number under \"%1\" is not finite.").arg(QLatin1StringView(key)));
    json[key] = value;
}

void put(Json& json, const char* key, qint64 value) {
    json[key] = value;
}

void put(Json& json, const char* key, const QString& value) {
    json[key] = text::toJson(value);
}

void put(Json& json, const char* key, const std::optional<AppSettings::Date>& value) {
    if (value)
        json[key] = text::secondsSinceReferenceDate(*value);
}

void put(Json& json, const char* key, const std::optional<bool>& value) {
    if (value)
        json[key] = *value;
}

void take(const Json& json, keys::HotkeyConfig& value) {
    value = keys::hotkeyConfigFrom(json);
}

void take(const Json& json, bool& value) {
    value = text::boolFrom(json);
}

void take(const Json& json, double& value) {
    value = text::doubleFrom(json);
}

void take(const Json& json, qint64& value) {
    value = text::integerFrom(json);
}

void take(const Json& json, QString& value) {
    value = text::stringFrom(json);
}

void take(const Json& json, std::optional<AppSettings::Date>& value) {
    value = text::dateFrom(json);
}

void take(const Json& json, std::optional<bool>& value) {
    value = text::boolFrom(json);
}

void takeLegacySilence(const Json& json, AppSettings& settings) {
    if (const auto* silence = text::find(json, legacySilenceKey)) {
        settings.voiceInputSilenceTimeoutSeconds = text::doubleFrom(*silence);
        settings.voiceDictationSilenceTimeoutSeconds = settings.voiceInputSilenceTimeoutSeconds;
    }
}

/// A model was once stored under the name of its gateway.
QString migratedVisionModel(const QString& stored) {
    const auto model = text::trimmed(stored);
    return model == QLatin1StringView("openai.pollinations") ? QStringLiteral("openai") : model;
}

}  // namespace

Json toJson(const AppSettings& settings) {
    auto json = Json::object();
    for (const auto& field : settingsFieldsInDocumentOrder)
        std::visit([&](auto member) { put(json, field.key, settings.*member); }, field.member);
    return json;
}

StoredSettings storedSettingsFrom(const Json& json) {
    if (!json.is_object())
        throw text::JsonError(QStringLiteral("The settings are no object."));
    StoredSettings stored{defaultSettings(), {}};
    const auto attempt = [&stored](const char* key, auto read) {
        try {
            read();
        } catch (const text::JsonError&) {
            stored.faulty.push_back(QLatin1StringView(key));
        }
    };
    attempt(legacySilenceKey, [&] { takeLegacySilence(json, stored.settings); });
    for (const auto& field : settingsFields)
        if (const auto* value = text::find(json, field.key))
            attempt(field.key, [&] {
                std::visit(
                    [&](auto member) {
                        auto read = stored.settings.*member;
                        take(*value, read);
                        stored.settings.*member = std::move(read);
                    },
                    field.member);
            });
    stored.settings.pollinationsVisionModel = migratedVisionModel(stored.settings.pollinationsVisionModel);
    return stored;
}

}  // namespace tavrelon::persistence
