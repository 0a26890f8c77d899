#pragma once

#include "app/service_consent.h"
#include "generation/ai_service.h"
#include "generation/generator.h"

namespace tavrelon::app {

/// Lets the input flows ask the generation service, which sends nothing before the user has agreed to
/// where it goes. Main thread.
class AIGenerator : public generation::Generator {
 public:
    /// All outlive this object.
    AIGenerator(generation::TavrelonAIService& service, const generation::PollinationsService& models,
                ServiceConsent& consent);

    /// The host that the last request went to first; empty before one.
    const QString& lastAsked() const { return lastAsked_; }

    std::chrono::seconds deadline() const override;
    async::Task<generation::GenerationResult> generate(generation::GenerationRequest request) override;
    async::Task<generation::GenerationResult> generateVideoResult(generation::GenerationRequest request,
                                                                  std::vector<QByteArray> frames) override;

 private:
    generation::TavrelonAIService& service_;
    const generation::PollinationsService& models_;
    QString lastAsked_;
};

}  // namespace tavrelon::app
