#include "app/ai_generator.h"

namespace tavrelon::app {

AIGenerator::AIGenerator(generation::TavrelonAIService& service, const generation::PollinationsService& models,
                         ServiceConsent& consent)
    : service_(service), models_(models) {
    service_.permit = [&models, &consent](generation::RequestContents contents) {
        return consent.obtain(generation::destinations(models.configuration, contents), contents);
    };
}

std::chrono::seconds AIGenerator::deadline() const {
    return models_.configuration.asksLocalServer() ? generation::PollinationsService::localDeadline
                                                   : generation::Generator::deadline();
}

async::Task<generation::GenerationResult> AIGenerator::generate(generation::GenerationRequest request) {
    return service_.generate(std::move(request));
}

async::Task<generation::GenerationResult> AIGenerator::generateVideoResult(generation::GenerationRequest request,
                                                                           std::vector<QByteArray> frames) {
    return service_.generateVideoResult(std::move(request), std::move(frames));
}

}  // namespace tavrelon::app
