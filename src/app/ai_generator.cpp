#include "app/ai_generator.h"

namespace tavrelon::app {

AIGenerator::AIGenerator(generation::TavrelonAIService& service, const generation::PollinationsService& models,
                         ServiceConsent& consent)
    : service_(service), models_(models) {
    service_.permit = [this, &consent](generation::RequestContents contents) {
        auto destinations = generation::destinations(models_.configuration, contents);
        lastAsked_ = destinations.empty() ? QString() : destinations.front().host();
        return consent.obtain(std::move(destinations), contents);
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
