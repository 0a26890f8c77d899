#pragma once

#include "generation/ai_service.h"
#include "input/generator.h"

namespace tavrelon::app {

/// Lets the input flows ask the generation service. Main thread.
class AIGenerator : public input::Generator {
 public:
    explicit AIGenerator(generation::TavrelonAIService& service) : service_(service) {}

    async::Task<generation::GenerationResult> generate(generation::GenerationRequest request) override;
    async::Task<generation::GenerationResult> generateVideoResult(generation::GenerationRequest request,
                                                                  std::vector<QByteArray> frames) override;

 private:
    generation::TavrelonAIService& service_;
};

}  // namespace tavrelon::app
