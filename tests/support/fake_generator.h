#pragma once

#include <deque>
#include <variant>

#include "async/waits.h"
#include "generation/generator.h"
#include "generation/processing_error.h"

namespace tavrelon::testing {

/// Answers requests from a script and keeps them. Without a script it answers "ANSWER".
class FakeGenerator : public generation::Generator {
 public:
    struct Failure {
        QString reason;
    };
    using Answer = std::variant<generation::GenerationResult, Failure, generation::ProcessingError>;

    explicit FakeGenerator(async::MainLoop& loop) : loop_(loop) {}

    std::chrono::milliseconds delay{10};
    std::deque<Answer> script;
    std::vector<generation::GenerationRequest> requests;
    std::vector<std::vector<QByteArray>> videos;

    async::Task<generation::GenerationResult> generate(generation::GenerationRequest request) override {
        requests.push_back(std::move(request));
        co_await async::pause(loop_, delay);
        Answer answer = generation::GenerationResult{.text = QStringLiteral("ANSWER")};
        if (!script.empty()) {
            answer = std::move(script.front());
            script.pop_front();
        }
        if (const auto* failure = std::get_if<Failure>(&answer))
            throw generation::ProcessingError::generationFailed(failure->reason);
        if (const auto* error = std::get_if<generation::ProcessingError>(&answer))
            throw *error;
        co_return std::get<generation::GenerationResult>(std::move(answer));
    }
    async::Task<generation::GenerationResult> generateVideoResult(generation::GenerationRequest request,
                                                                  std::vector<QByteArray> frames) override {
        videos.push_back(std::move(frames));
        co_return co_await generate(std::move(request));
    }

 private:
    async::MainLoop& loop_;
};

}  // namespace tavrelon::testing
