#include "app/ai_generator.h"

namespace tavrelon::app {

async::Task<generation::GenerationResult> AIGenerator::generate(input::GenerationRequest request) {
    return service_.generate(std::move(request.input), std::move(request.context), std::move(request.userStyle),
                             std::move(request.languageStyle), std::move(request.cloneSystemPrompt),
                             std::move(request.userVoice), request.enhanceImagePrompts);
}

}  // namespace tavrelon::app
