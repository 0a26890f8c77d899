#pragma once

#include "generation/chat_prompt.h"
#include "platform/http_session.h"

/// The chat protocol of the Pollinations gateway: the shape of OpenAI's chat completions. Pure.
namespace tavrelon::generation::chat_pollinations {

struct Call {
    QString baseURL;  ///< without a trailing "/"
    std::optional<QString> key{};
    QString model;
    ImageCapability imageCapable = ImageCapability::No;
    ChatPrompt prompt;
    JsonMode jsonMode = JsonMode::Off;
};

inline constexpr QLatin1StringView genChatCompletionsPath{"/v1/chat/completions"};

/// Throws `invalidURL` when the base URL and the path do not form an address.
platform::HttpRequest buildRequest(const Call& call);

/// The first choice's content as it stands. Throws `apiError`, `JsonError` or `parseError`.
QString readResponse(const platform::HttpResponse& response);

}  // namespace tavrelon::generation::chat_pollinations
