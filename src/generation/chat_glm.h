#pragma once

#include "generation/chat_prompt.h"
#include "generation/pollinations_model.h"
#include "platform/http_session.h"

/// The chat protocol of the GLM API. Pure.
namespace tavrelon::generation::chat_glm {

struct Call {
    QString baseURL;  ///< without a trailing "/"
    std::optional<QString> key{};
    PollinationsModel model = PollinationsModel::glmTextFlash;
    ChatPrompt prompt;
    JsonMode jsonMode = JsonMode::Off;
};

/// Throws `apiError` 401 without a key and `unsupportedImageInput` for an image that the model does not take.
platform::HttpRequest buildRequest(const Call& call);

/// The first choice's content, a text or the joined texts of an array. Throws `apiError`, `JsonError` or `parseError`.
QString readResponse(const platform::HttpResponse& response);

}  // namespace tavrelon::generation::chat_glm
