#include "persistence/service_keys.h"

#include "text/characters.h"

namespace tavrelon::persistence {

ServiceKeys storedServiceKeys(platform::DefaultsStore& userDefaults, const AppSettings& settings) {
    using namespace defaults_keys;
    const auto gateway = text::trimmedOrAbsent(settings.pollinationsBaseURL).value_or(defaultPollinationsBaseURL());
    const auto ollama = text::trimmedOrAbsent(settings.ollamaLocalEndpoint).value_or(defaultOllamaLocalEndpoint());
    return {userDefaults.string(nvidiaApiKey).value_or(QString()),
            userDefaults.string(ollamaCloudApiKey).value_or(QString()),
            boundKey(userDefaults, ollamaLocalApiKey, ollama), boundKey(userDefaults, pollinationsApiKey, gateway)};
}

void storeServiceKeys(platform::DefaultsStore& userDefaults, const ServiceKeys& before, const ServiceKeys& now) {
    using namespace defaults_keys;
    if (now.nvidia != before.nvidia)
        userDefaults.setString(nvidiaApiKey, now.nvidia);
    if (now.ollamaCloud != before.ollamaCloud)
        userDefaults.setString(ollamaCloudApiKey, now.ollamaCloud);
    if (now.ollamaLocal != before.ollamaLocal)
        storeBoundKey(userDefaults, ollamaLocalApiKey, now.ollamaLocal);
    if (now.pollinations != before.pollinations)
        storeBoundKey(userDefaults, pollinationsApiKey, now.pollinations);
}

}  // namespace tavrelon::persistence
