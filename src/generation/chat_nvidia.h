#pragma once

#include <vector>

#include "generation/chat_prompt.h"
#include "generation/pollinations_model.h"
#include "platform/http_session.h"

/// The chat protocol of the NVIDIA endpoint, the only one that takes several images. Pure.
namespace tavrelon::generation::chat_nvidia {

struct Call {
    QString url;
    std::optional<QString> key{};
    PollinationsModel model = PollinationsModel::nvidiaNemotron;
    ChatPrompt prompt;
    std::optional<std::vector<QByteArray>> images{};  ///< JPEG; instead of the prompt's single image
    Thinking thinking = Thinking::AsConfigured;
    bool thinkEnabled = false;  ///< the user's setting
};

/// The system prompt under the first word that switches the model's thinking. A directive that the prompt's author
/// wrote stands, unless thinking is forced off.
QString applyThinkDirective(const QString& systemPrompt, Thinking thinking, bool thinkEnabled);

/// Throws `apiError` 401 without a key and `invalidURL` for an address that cannot be formed.
platform::HttpRequest buildRequest(const Call& call);

/// The first choice's content as it stands. Throws `apiError`, `JsonError` or `parseError`.
QString readResponse(const platform::HttpResponse& response);

}  // namespace tavrelon::generation::chat_nvidia
