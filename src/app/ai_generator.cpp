#include "app/ai_generator.h"

namespace tavrelon::app {

async::Task<generation::GenerationResult> AIGenerator::generate(generation::GenerationRequest request) {
    return service_.generate(std::move(request));
}

async::Task<generation::GenerationResult> AIGenerator::generateVideoResult(generation::GenerationRequest request,
                                                                           std::vector<QByteArray> frames) {
    return service_.generateVideoResult(std::move(request), std::move(frames));
}

}  // namespace tavrelon::app
