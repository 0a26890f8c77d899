#include "learning/adaptive_prompt_learner.h"

#include <gmock/gmock.h>

#include "generation/gateway_fixture.h"
#include "learning/adaptive_prompt.h"
#include "support/failing_file_system.h"
#include "support/fake_serial_queue.h"
#include "support/memory_defaults_store.h"

namespace tavrelon::learning {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

class AdaptivePromptLearnerTest : public testing::GatewayFixture {
 public:
    const QString folder = u"/data/Tavrelon"_s;
    const QString statePath = folder + u"/adaptive_prompt_state.json"_s;
    testing::FailingFileSystem files;
    testing::MemoryDefaultsStore store;
    testing::FakeSerialQueues queues{loop};
    persistence::StorageManager storage{store, files, log, loop, folder};
    persistence::HistoryManager history{files, log, folder, 20};
    std::optional<AdaptivePromptLearner> learner;

    void start(qsizetype interval = 3) {
        learner.reset();
        learner.emplace(loop, files, log, queues, storage, service, history, interval);
    }
    void setLearning(bool enabled) {
        storage.changeSettings([&](persistence::AppSettings& settings) { settings.enableLocalLearning = enabled; });
    }
    /// Records the inputs "<name> <number>" of the range.
    void record(const QString& name, int first, int last) {
        for (int number = first; number <= last; ++number)
            learner->recordInput(name + u' ' + QString::number(number));
        loop.runUntilIdle();
    }
    LearnerState stored() const { return learnerStateFrom(text::parseJson(files.content(statePath))); }
    QString prompt() const { return storage.settings().adaptiveSystemPrompt; }
    QStringList learnerLines() const { return log.lines().filter(u"[AdaptivePrompt]"_s); }

    /// What the model heard in the request at `index`.
    QString heard(std::size_t index) const { return text::stringFrom(body(index)["messages"][1]["content"]); }
    void failAlways() {
        http.otherwise = [](const auto&) {
            return testing::FakeHttpSession::Reply{platform::HttpResponse{.status = 503, .body = "busy"}, {}};
        };
    }
};

TEST_F(AdaptivePromptLearnerTest, TheFortiethSampleStartsOneUpdateWithExactlyForty) {
    start(40);
    learner->scheduleEvaluation();
    record(u"input"_s, 1, 39);
    EXPECT_EQ(http.requests().size(), 0U);
    EXPECT_EQ(stored().pendingInputs.size(), 39U);

    http.answer({platform::HttpResponse{.status = 200, .body = chatReply(u" \"Write\n\tbriefly.\" "_s)},
                 std::chrono::seconds(5)});
    record(u"input"_s, 40, 40);
    record(u"later"_s, 1, 45);  // while the model thinks
    EXPECT_EQ(stored().pendingInputs.size(), 85U);
    ASSERT_EQ(http.requests().size(), 1U);
    const auto lines = heard(0).split(u'\n');
    ASSERT_EQ(lines.size(), 42);
    EXPECT_EQ(lines.front(), u"Recent user inputs:"_s);
    EXPECT_EQ(lines[1], u"Input 1: input 1"_s);
    EXPECT_EQ(lines[40], u"Input 40: input 40"_s);
    EXPECT_EQ(lines.back(), u"Write the updated system prompt now."_s);
    EXPECT_EQ(body(0)["max_tokens"], 400);

    http.answer({platform::HttpResponse{.status = 200, .body = chatReply(u"Be terse."_s)}, std::chrono::seconds(5)});
    loop.advance(std::chrono::seconds(6));
    EXPECT_EQ(prompt(), u"Write briefly."_s);
    EXPECT_EQ(http.requests().size(), 2U) << "what was recorded meanwhile is enough for another update at once";
    EXPECT_TRUE(heard(1).contains(u"Input 40: later 40"_s));
    EXPECT_FALSE(heard(1).contains(u": input "_s));
    loop.advance(std::chrono::seconds(6));
    EXPECT_EQ(prompt(), u"Be terse."_s);
    EXPECT_THAT(stored().pendingInputs,
                ElementsAre(u"later 41"_s, u"later 42"_s, u"later 43"_s, u"later 44"_s, u"later 45"_s));
    EXPECT_TRUE(stored().lastUpdatedAt);
    EXPECT_TRUE(storage.settings().adaptiveSystemPromptUpdatedAt);
    EXPECT_EQ(storage.settings().adaptiveSystemPromptSource, u"NVIDIA Nemotron Nano 12B VL (nvidia.test)"_s);
    EXPECT_TRUE(store.data(persistence::defaults_keys::settings)->contains("Be terse."));
}

TEST_F(AdaptivePromptLearnerTest, AFailureKeepsTheOldestSamplesForTheNextInput) {
    start();
    failAlways();
    record(u"input"_s, 1, 3);
    const auto attempts = http.requests().size();
    EXPECT_GT(attempts, 0U);
    ASSERT_EQ(learnerLines().size(), 1);
    EXPECT_TRUE(
        learnerLines().front().startsWith(u"[AdaptivePrompt] Failed to update system prompt: API error (503)"_s));
    EXPECT_EQ(stored().pendingInputs.size(), 3U);
    record(u"early"_s, 1, 1);
    loop.advance(std::chrono::minutes(11));
    EXPECT_EQ(http.requests().size(), attempts) << "not at every input, and nothing tries again by itself";

    http.otherwise = nullptr;
    http.answer(200, chatReply(u"Write briefly."_s));
    record(u"input"_s, 4, 4);
    EXPECT_TRUE(heard(attempts).contains(u"Input 1: input 1\n"_s));
    EXPECT_FALSE(heard(attempts).contains(u"input 4"_s));
    EXPECT_EQ(prompt(), u"Write briefly."_s);
    EXPECT_THAT(stored().pendingInputs, ElementsAre(u"early 1"_s, u"input 4"_s));
}

TEST_F(AdaptivePromptLearnerTest, WhatIsForgottenIsGoneAndAnUpdateUnderWayTeachesNothing) {
    history.addEntry({.id = QUuid::createUuid(), .inputText = u"of the history"_s});
    start();
    http.answer(
        {platform::HttpResponse{.status = 200, .body = chatReply(u"Write briefly."_s)}, std::chrono::seconds(5)});
    record(u"input"_s, 1, 4);
    learner->forget();
    record(u"later"_s, 1, 1);
    loop.advance(std::chrono::seconds(6));
    EXPECT_EQ(prompt(), QString());
    EXPECT_THAT(stored().pendingInputs, ElementsAre(u"later 1"_s));
    http.answer(200, chatReply(u"Be terse."_s));
    record(u"later"_s, 2, 3);
    EXPECT_EQ(prompt(), u"Be terse."_s);
    const auto asked = http.requests().size();
    for (int number = 1; number <= 3; ++number)
        learner->recordInput(u"on the way "_s + QString::number(number));
    learner->forget();  // before the queue, and with it the model, comes to them
    learner->forget();
    loop.runUntilIdle();
    EXPECT_EQ(http.requests().size(), asked);
    EXPECT_EQ(prompt(), QString());
    EXPECT_FALSE(store.data(persistence::defaults_keys::settings)->contains("Be terse."));
    start();
    loop.runUntilIdle();
    EXPECT_THAT(stored().pendingInputs, ElementsAre()) << "nor does the history bring it back";
}

TEST_F(AdaptivePromptLearnerTest, ABlankReplyChangesNothingAndOneOfQuotationMarksIsAnEmptyPrompt) {
    storage.changeSettings([](persistence::AppSettings& settings) { settings.adaptiveSystemPrompt = u"old"_s; });
    start();
    http.answer(200, chatReply(u" \n"_s));
    record(u"input"_s, 1, 3);
    EXPECT_EQ(prompt(), u"old"_s);
    EXPECT_EQ(stored().pendingInputs.size(), 3U);
    EXPECT_EQ(learnerLines(), QStringList());
    loop.advance(std::chrono::minutes(10));

    http.answer(200, chatReply(u"\"''\""_s));
    record(u"input"_s, 4, 4);
    EXPECT_EQ(prompt(), QString());
    EXPECT_EQ(stored().pendingInputs.size(), 1U);
}

TEST_F(AdaptivePromptLearnerTest, WithLearningOffNothingIsRecordedOrAskedAndNothingIsLost) {
    start();
    record(u"input"_s, 1, 2);
    setLearning(false);
    record(u"unseen"_s, 1, 5);
    EXPECT_THAT(stored().pendingInputs, ElementsAre(u"input 1"_s, u"input 2"_s));
    setLearning(true);
    http.answer(
        {platform::HttpResponse{.status = 200, .body = chatReply(u"Write briefly."_s)}, std::chrono::seconds(5)});
    learner->recordInput(u"input 3"_s);
    setLearning(false);  // before the queue comes to the input
    loop.runUntilIdle();
    EXPECT_EQ(stored().pendingInputs.size(), 2U);
    setLearning(true);
    record(u"input"_s, 3, 3);
    setLearning(false);  // while the model thinks: the answer is still taken
    loop.advance(std::chrono::seconds(6));
    EXPECT_EQ(prompt(), u"Write briefly."_s);
    EXPECT_THAT(stored().pendingInputs, ElementsAre());
}

TEST_F(AdaptivePromptLearnerTest, AFreshInstallationStartsWithTheNewestOfTheHistory) {
    for (const auto& input : {u"oldest"_s, u"  two\nlines "_s, u"x"_s, u"newest"_s})
        history.addEntry({.id = QUuid::createUuid(), .inputText = input});
    setLearning(false);
    start(3);
    EXPECT_FALSE(files.exists(statePath));
    setLearning(true);
    start(3);
    EXPECT_THAT(stored().pendingInputs, ElementsAre(u"newest"_s, u"two lines"_s)) << "no older one fills the gap";
    learner->scheduleEvaluation();
    loop.runUntilIdle();
    EXPECT_EQ(http.requests().size(), 0U);

    history.addEntry({.id = QUuid::createUuid(), .inputText = u"another"_s});
    start(3);
    EXPECT_THAT(stored().pendingInputs, ElementsAre(u"newest"_s, u"two lines"_s)) << "once";
}

TEST_F(AdaptivePromptLearnerTest, AnUpdateCutOffByTheEndRunsAgainAfterTheNextStart) {
    start();
    http.neverAnswer();
    record(u"input"_s, 1, 3);
    learner->recordInput(u"last words"_s);
    learner.reset();  // stores what was posted; ends the exchange
    EXPECT_EQ(http.abandoned(), 1);
    EXPECT_EQ(stored().pendingInputs.size(), 4U);
    loop.runUntilIdle();

    http.answer(200, chatReply(u"Write briefly."_s));
    start();
    learner->scheduleEvaluation();
    loop.runUntilIdle();
    EXPECT_EQ(heard(1), heard(0));
    EXPECT_THAT(stored().pendingInputs, ElementsAre(u"last words"_s));
}

TEST_F(AdaptivePromptLearnerTest, AFaultyStateFileIsLoggedAndGoesWithTheNextSave) {
    const QByteArray good = text::compactJson(toJson(LearnerState{{u"one"_s, u"two"_s}, loop.wallTime()}));
    QList<QByteArray> faulty{R"({"lastUpdatedAt":0})",
                             R"([])",
                             R"({"pendingInputs":"x"})",
                             R"({"pendingInputs":[1]})",
                             R"({"pendingInputs":[],"lastUpdatedAt":"x"})",
                             "\xff"};
    for (qsizetype length = 0; length < good.size(); ++length)
        faulty << good.first(length);
    for (const auto& document : faulty) {
        log.clear();
        files.put(statePath, document);
        start();
        ASSERT_EQ(log.lines().size(), 1) << document.left(200).toStdString();
        ASSERT_TRUE(log.lines().front().startsWith(u"[AdaptivePrompt] Failed to load state: "_s));
        ASSERT_EQ(files.content(statePath), document);
    }
    record(u"input"_s, 1, 1);
    EXPECT_THAT(stored().pendingInputs, ElementsAre(u"input 1"_s));

    files.put(statePath, good);
    start();
    record(u"input"_s, 1, 0);
    EXPECT_EQ(files.content(statePath), good);
}

TEST(AdaptivePrompt, ASampleIsOneLineOfAtMostTwoHundredAndEightyCharacters) {
    using adaptive_prompt::cleanedSample;
    for (const auto& input : {u""_s, u" \n"_s, u"x"_s, u" 👨‍👩‍👧 "_s})
        EXPECT_EQ(cleanedSample(input), std::nullopt);
    EXPECT_EQ(cleanedSample(u"\t你好\n\n  there\u3000friend "_s), u"你好 there friend"_s);
    EXPECT_EQ(cleanedSample(QString(280, u'a')), QString(280, u'a'));
    EXPECT_EQ(cleanedSample(QString(300, u'a')), QString(280, u'a') + u"..."_s);
    EXPECT_EQ(cleanedSample(u"👍🏽"_s.repeated(300)), u"👍🏽"_s.repeated(280) + u"..."_s);
}

TEST(AdaptivePrompt, APromptIsOneLineOfAtMostSixHundredCharacters) {
    using adaptive_prompt::cleanedPrompt;
    EXPECT_EQ(cleanedPrompt(u"\n \t"_s), std::nullopt);
    EXPECT_EQ(cleanedPrompt(u"\"'Don't\n\nshout.'\""_s), u"Don't shout."_s);
    EXPECT_EQ(cleanedPrompt(u"\" x \""_s), u" x "_s) << "white space within the marks is not trimmed";
    EXPECT_EQ(cleanedPrompt(QString(700, u'写')), QString(600, u'写'));
    EXPECT_EQ(adaptive_prompt::systemPrompt().size(), 499);
}

}  // namespace tavrelon::learning
