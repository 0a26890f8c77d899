#pragma once

#include "persistence/app_settings.h"
#include "persistence/bound_key.h"

namespace tavrelon::persistence {

/// The names of the entries in the defaults store that hold a key.
namespace defaults_keys {
inline constexpr QLatin1StringView pollinationsApiKey("tavrelon.pollinationsApiKey");
inline constexpr QLatin1StringView ollamaCloudApiKey("tavrelon.ollamaCloudApiKey");
inline constexpr QLatin1StringView ollamaLocalApiKey("tavrelon.ollamaLocalApiKey");
inline constexpr QLatin1StringView nvidiaApiKey("tavrelon.nvidiaApiKey");
}  // namespace defaults_keys

/// The keys of the model services, as the user typed them; empty where there is none.
struct ServiceKeys {
    QString nvidia;
    QString ollamaCloud;
    BoundKey ollamaLocal;
    BoundKey pollinations;
};

/// The stored keys. One without an origin belongs to the server that the settings name.
ServiceKeys storedServiceKeys(platform::DefaultsStore& userDefaults, const AppSettings& settings);

/// Stores those that are others than `before`. A failure is silent.
void storeServiceKeys(platform::DefaultsStore& userDefaults, const ServiceKeys& before, const ServiceKeys& now);

}  // namespace tavrelon::persistence
