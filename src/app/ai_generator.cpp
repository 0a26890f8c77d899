#include "app/ai_generator.h"

namespace tavrelon::app {

async::Task<generation::GenerationResult> AIGenerator::generate(generation::GenerationRequest request) {
    return service_.generate(std::move(request));
}

async::Task<generation::GenerationResult> AIGenerator::generateVideoResult(generation::GenerationRequest request,
                                                                           std::vector<QByteArray> frames) {
    (void)request, (void)frames;
    throw generation::ProcessingError::generationFailed(QStringLiteral("Window video is not available"));
    co_return generation::GenerationResult{};
}

}  // namespace tavrelon::app
