#pragma once

#include <variant>

#include "platform/http_session.h"
#include "text/json.h"

/// The image protocols: the Pollinations endpoint, whose path carries the prompt, and the GLM images API, whose answer
/// comes in many shapes. Pure.
namespace tavrelon::generation::image_wire {

/// Throws `invalidPrompt` for a prompt that is empty or no valid text, and `invalidURL`.
QUrl pollinationsUrl(const QString& baseURL, const QString& prompt, const QString& model);

/// The body. Throws `imageGenerationFailed` for a status other than 200, and `invalidImageData` for a type that is not
/// an image's or is missing.
QByteArray readPollinationsImage(const platform::HttpResponse& response);

/// The same for a download, where a missing type passes.
QByteArray readDownload(const platform::HttpResponse& response);

struct GLMCall {
    QString baseURL;
    std::optional<QString> key{};
    QString model;
    QString prompt;
    int width = 0;
    int height = 0;
    QString quality;  ///< left out when empty
};

/// Throws `apiError` 401 without a key.
platform::HttpRequest buildGLMRequest(const GLMCall& call);

/// The image, or the address where it lies. Throws `apiError`, `JsonError` or `parseError`.
std::variant<QByteArray, QUrl> readGLMAnswer(const platform::HttpResponse& response);

}  // namespace tavrelon::generation::image_wire
