#pragma once

#include <QStringList>

#include "generation/chat_prompt.h"
#include "generation/pollinations_model.h"
#include "platform/http_session.h"

/// The chat protocol of an Ollama server, in the cloud or on the user's machine. Pure.
namespace tavrelon::generation::chat_ollama {

struct Call {
    OllamaMode mode = OllamaMode::cloud;
    QString url;  ///< used as it stands
    std::optional<QString> model{};
    std::optional<QString> key{};
    QString systemPrompt;
    QString userPrompt;
    std::vector<QByteArray> images{};  ///< JPEG
};

/// Throws `configurationMissing` for what the user did not set, and `invalidURL` for an address that cannot be formed.
platform::HttpRequest buildRequest(const Call& call);

/// The reply's text. Throws `apiError` (also for an error told under status 200), `JsonError` or `parseError`.
QString readResponse(const platform::HttpResponse& response);

/// The names in a model list, sorted, each once. Throws `apiError`, `JsonError` or `parseError`.
QStringList readModelList(const platform::HttpResponse& response);

}  // namespace tavrelon::generation::chat_ollama
