#include "generation/service_endpoints.h"

#include "service_endpoints_config.h"

namespace tavrelon::generation {

ServiceEndpoints ServiceEndpoints::builtIn() {
    return {
        .pollinationsBaseURL = QStringLiteral(TAVRELON_POLLINATIONS_BASE_URL),
        .glmBaseURL = QStringLiteral(TAVRELON_GLM_BASE_URL),
        .nvidiaChatCompletionsURL = QStringLiteral(TAVRELON_NVIDIA_CHAT_URL),
        .ollamaCloudTagsURL = QStringLiteral(TAVRELON_OLLAMA_CLOUD_URL "/api/tags"),
        .ollamaCloudChatURL = QStringLiteral(TAVRELON_OLLAMA_CLOUD_URL "/api/chat"),
        .ollamaLocalChatURL = QStringLiteral(TAVRELON_OLLAMA_LOCAL_CHAT_URL),
        .cloneApiBaseURL = QStringLiteral(TAVRELON_CLONE_API_BASE_URL),
        .builtInPollinationsKey = QStringLiteral(TAVRELON_POLLINATIONS_KEY),
        .builtInGLMKey = QStringLiteral(TAVRELON_GLM_KEY),
        .builtInNvidiaApiKey = QStringLiteral(TAVRELON_NVIDIA_KEY),
    };
}

}  // namespace tavrelon::generation
