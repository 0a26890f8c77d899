#include "app/service_test.h"

#include "text/localized_error.h"

namespace tavrelon::app {

namespace {

constexpr qint64 answerTokens = 256;  // a model that thinks first needs more than the word

}  // namespace

async::Task<ServiceTest> testService(generation::PollinationsService& models, async::MainLoop& loop) {
    const auto start = loop.now();
    const auto limit = models.asksLocalServer() ? generation::PollinationsService::localDeadline
                                                : generation::PollinationsService::raceDeadline;
    ServiceTest test{std::unexpected(QString()), {}, {}};
    try {
        auto answer = co_await models.raceWithDeadline(
            limit,
            models.answerText(QStringLiteral("You are a helpful assistant."),
                              QStringLiteral("Answer with the single word: ready"), std::nullopt, answerTokens, 0.0F));
        const auto words = answer.text.simplified();
        if (words.isEmpty())
            test.answer = std::unexpected(QStringLiteral("The model gave an empty answer."));
        else
            test.answer = words;
        test.source = answer.source;
    } catch (const text::LocalizedError& error) {
        test.answer = std::unexpected(error.localizedDescription().simplified());
    }
    test.taken = std::chrono::duration_cast<std::chrono::milliseconds>(loop.now() - start);
    co_return test;
}

}  // namespace tavrelon::app
