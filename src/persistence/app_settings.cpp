#include "persistence/app_settings.h"

#include <service_endpoints_config.h>

namespace tavrelon::persistence {

QString defaultPollinationsBaseURL() {
    return QStringLiteral(TAVRELON_POLLINATIONS_BASE_URL);
}

QString defaultOllamaLocalEndpoint() {
    return QStringLiteral(TAVRELON_OLLAMA_LOCAL_CHAT_URL);
}

QString defaultCloneApiBaseURL() {
    return QStringLiteral(TAVRELON_CLONE_API_BASE_URL);
}

const AppSettings& defaultSettings() {
    static const AppSettings settings;
    return settings;
}

}  // namespace tavrelon::persistence
