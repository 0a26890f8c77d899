#include "generation/chat_wire.h"
#include "generation/error_text.h"
#include "generation/image_wire.h"
#include "generation/pollinations_service.h"
#include "platform/web_origin.h"

/// The gateway's calls for images.
namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

platform::HttpRequest imageGet(const QUrl& url, std::chrono::seconds timeout) {
    return {.url = url, .headers = {{"User-Agent", "Tavrelon/1.0"}}, .requestTimeout = timeout};
}

}  // namespace

async::Task<QByteArray> PollinationsService::generateImageWithPollinations(QString prompt) {
    const bool own =
        pollinationsCustomEnabled && pollinationsImageModelOverride && !pollinationsImageModelOverride->isEmpty();
    const auto url = image_wire::pollinationsUrl(pollinationsBaseURL(), prompt,
                                                 own ? *pollinationsImageModelOverride : identifier(imageModel));
    // The path is the prompt, and no line tells what the user wrote.
    log_.line("[Pollinations] Generating image at "_L1 + url.host());
    auto request = imageGet(url, std::chrono::seconds(120));
    chat_wire::authorize(request, effectivePollinationsApiKey());
    auto image = image_wire::readPollinationsImage(co_await exchange(std::move(request)));
    log_.line(u"[Pollinations] Image generated successfully: %1 bytes"_s.arg(image.size()));
    co_return image;
}

async::Task<QByteArray> PollinationsService::generateImageWithGLM(QString prompt, int width, int height,
                                                                  QString quality) {
    auto request = image_wire::buildGLMRequest({.baseURL = endpoints_.glmBaseURL,
                                                .key = glmApiKey,
                                                .model = glmImageModel,
                                                .prompt = std::move(prompt),
                                                .width = width,
                                                .height = height,
                                                .quality = std::move(quality)});
    const auto sent = request.body;
    auto found = error_text::readAnswer(sent, co_await exchange(std::move(request)), image_wire::readGLMAnswer);
    if (auto* image = std::get_if<QByteArray>(&found))
        co_return std::move(*image);
    co_return co_await downloadImage(std::get<QUrl>(found));
}

async::Task<QByteArray> PollinationsService::downloadImage(QUrl url) {
    auto request = imageGet(url, chat_wire::requestTimeout);
    chat_wire::authorize(request, keyFor(url));
    const auto response = co_await raceWithDeadline(raceDeadline, exchange(std::move(request)));
    co_return image_wire::readDownload(response);
}

std::optional<QString> PollinationsService::keyFor(const QUrl& url) const {
    if (platform::isWithinServer(url, QUrl(pollinationsBaseURL())))
        return effectivePollinationsApiKey();
    if (platform::isWithinServer(url, QUrl(endpoints_.glmBaseURL)))
        return glmApiKey;
    return std::nullopt;
}

}  // namespace tavrelon::generation
