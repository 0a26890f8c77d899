#include "app/service_test.h"

#include "generation/text_chain.h"

namespace tavrelon::app {

namespace {

constexpr qint64 answerTokens = 256;  // a model that thinks first needs more than the word

/// Ollama looks at pictures alone, so the chain would ask somebody else.
async::Task<generation::ModelAnswer> askChosen(generation::PollinationsService& models, generation::ChatPrompt prompt) {
    if (!models.configuration.ollamaEnabled)
        co_return co_await generation::answerText(models, std::move(prompt));
    auto answer = co_await models.generateWithOllama(std::move(prompt.system), std::move(prompt.user), {});
    co_return generation::ModelAnswer{std::move(answer), models.configuration.ollamaSourceName()};
}

}  // namespace

async::Task<ServiceTest> testService(generation::PollinationsService& models, async::MainLoop& loop) {
    const auto start = loop.now();
    ServiceTest test{std::unexpected(text::LocalizedText()), {}, {}};
    try {
        auto answer = co_await models.raceWithDeadline(
            models.deadline(), askChosen(models, {.system = QStringLiteral("You are a helpful assistant."),
                                                  .user = QStringLiteral("Answer with the single word: ready"),
                                                  .maxTokens = answerTokens}));
        const auto words = answer.text.simplified();
        if (words.isEmpty())
            test.answer = std::unexpected(text::LocalizedText(QStringLiteral("The model gave an empty answer."),
                                                              QStringLiteral("模型的回答为空。")));
        else
            test.answer = words;
        test.source = answer.source;
    } catch (const text::LocalizedError& error) {
        test.answer = std::unexpected(
            text::LocalizedText(error.description().english.simplified(), error.description().chinese.simplified()));
    }
    test.taken = std::chrono::duration_cast<std::chrono::milliseconds>(loop.now() - start);
    co_return test;
}

}  // namespace tavrelon::app
