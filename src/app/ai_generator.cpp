#include "app/ai_generator.h"

#include "generation/image_intent.h"
#include "text/characters.h"

namespace tavrelon::app {

using generation::RequestContents;

std::chrono::seconds AIGenerator::deadline() const {
    return models_.configuration.asksLocalServer() ? generation::PollinationsService::localDeadline
                                                   : generation::Generator::deadline();
}

async::Task<generation::GenerationResult> AIGenerator::generate(generation::GenerationRequest request) {
    const bool hasPicture = request.context && request.context->screenshotData;
    const bool isWishForPicture =
        request.mayDraw && generation::isImageRequest(text::trimmed(request.input));  // goes as text alone
    co_await obtainConsent(request.input,
                           hasPicture && !isWishForPicture ? RequestContents::Picture : RequestContents::Text);
    co_return co_await service_.generate(std::move(request));
}

async::Task<generation::GenerationResult> AIGenerator::generateVideoResult(generation::GenerationRequest request,
                                                                           std::vector<QByteArray> frames) {
    co_await obtainConsent(request.input, RequestContents::Frames);
    co_return co_await service_.generateVideoResult(std::move(request), std::move(frames));
}

async::Task<void> AIGenerator::obtainConsent(QString input, RequestContents contents) {
    if (!text::isBlank(input))  // else the service refuses it and nothing goes anywhere
        co_await consent_.obtain(generation::destinations(models_.configuration, contents), contents);
}

}  // namespace tavrelon::app
