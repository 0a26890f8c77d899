#include "generation/chat_wire.h"
#include "generation/image_wire.h"
#include "generation/pollinations_service.h"

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
    log_.line("[Pollinations] Generating image: "_L1 + url.toString(QUrl::FullyEncoded | QUrl::RemoveUserInfo));
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
    auto found = image_wire::readGLMAnswer(co_await exchange(std::move(request)));
    if (auto* image = std::get_if<QByteArray>(&found))
        co_return std::move(*image);
    co_return co_await downloadImage(std::get<QUrl>(found));
}

async::Task<QByteArray> PollinationsService::downloadImage(QUrl url) {
    auto request = imageGet(url, chat_wire::requestTimeout);
    chat_wire::authorize(request, keyForHost(url.host().toLower()));
    const auto response = co_await raceWithDeadline(raceDeadline, exchange(std::move(request)));
    co_return image_wire::readDownload(response);
}

std::optional<QString> PollinationsService::keyForHost(const QString& host) const {
    if (host.isEmpty())
        return std::nullopt;
    if (host.contains("bigmodel"_L1))
        return glmApiKey;
    if (host.contains("pollinations"_L1) || host == QUrl(pollinationsBaseURL()).host().toLower())
        return effectivePollinationsApiKey();
    return std::nullopt;
}

}  // namespace tavrelon::generation
