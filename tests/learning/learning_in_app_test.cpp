// The whole way of what is learned, from typed requests to the prompt of the next one, on a desktop of fakes.
#include <gtest/gtest.h>

#include "app/app_delegate.h"
#include "app/history_clearing.h"
#include "generation/gateway_fixture.h"
#include "support/test_desktop.h"

namespace tavrelon::learning {

using namespace Qt::StringLiterals;
using tavrelon::testing::GatewayFixture;

class LearningInApp : public ::testing::Test {
 public:
    testing::TestDesktop desktop;
    QStringList systemPrompts;  ///< of every request that a model heard
    QStringList userPrompts;
    std::optional<app::AppDelegate> program;

    LearningInApp() {
        desktop.httpSession.otherwise = [this](const platform::HttpRequest& request) {
            const auto messages = text::parseJson(request.body)["messages"];
            systemPrompts << text::stringFrom(messages[0]["content"]);
            userPrompts << text::stringFrom(messages[1]["content"]);
            const bool learning = systemPrompts.back().contains(u"You are a prompt engineer."_s);
            return testing::FakeHttpSession::Reply{
                platform::HttpResponse{.status = 200,
                                       .body = GatewayFixture::chatReply(learning ? u"Write tersely."_s : u"ANSWER"_s)},
                {}};
        };
    }
    void start() {
        program.emplace(desktop.platform, desktop.userInterface, GatewayFixture::endpoints());
        program->applicationDidFinishLaunching();
        desktop.loop.runUntilIdle();
    }
    void toggle() {
        desktop.keyboard.press(keys::defaults::toggleHotkey.keyCode, keys::defaults::toggleHotkey.modifiers);
        desktop.loop.runUntilIdle();
    }
    void request(const QString& text) {
        desktop.editor.open(QString());
        toggle();
        for (const auto& character : text::characters(text))
            desktop.keyboard.press(1000, {}, character.toString());
        desktop.editor.type(text);
        toggle();
        desktop.loop.runToEnd();
    }
};

TEST_F(LearningInApp, FortyRequestsTeachTheNextOne) {
    start();
    for (int number = 1; number <= 40; ++number)
        request(u"please answer "_s + QString::number(number));
    ASSERT_EQ(systemPrompts.size(), 41);
    EXPECT_FALSE(systemPrompts.filter(u"Write tersely."_s).size());
    EXPECT_TRUE(userPrompts.back().startsWith(u"Recent user inputs:\nInput 1: please answer 1\n"_s));
    EXPECT_TRUE(userPrompts.back().contains(u"Input 40: please answer 40\n"_s));
    request(u"please answer again"_s);
    EXPECT_TRUE(systemPrompts.back().contains(u"Write tersely."_s));

    auto& state = program->appState();
    const auto clear = [&] {
        app::clearHistory(state.historyManager(), state.adaptivePromptLearner(), state.undoOffers());
        desktop.loop.runUntilIdle();
    };
    const auto samples = [&] { return desktop.fileSystem.content(u"/data/Tavrelon/adaptive_prompt_state.json"_s); };
    const auto gathered = samples();
    ASSERT_TRUE(gathered.contains("please answer again"));
    clear();
    EXPECT_EQ(samples(), R"({"pendingInputs":[]})") << "on disk there is nothing to find, whatever ends the program";
    clear();  // a double click
    desktop.loop.advance(std::chrono::seconds(9));
    state.undoOffers().undo(app::Undoable::HistoryClearing);
    desktop.loop.runUntilIdle();
    EXPECT_EQ(samples(), gathered);
    EXPECT_EQ(state.historyManager().entries().size(), 20U);
    request(u"please answer too"_s);
    EXPECT_TRUE(systemPrompts.back().contains(u"Write tersely."_s));

    clear();
    request(u"please answer once more"_s);
    EXPECT_FALSE(systemPrompts.back().contains(u"Write tersely."_s)) << "it goes with the history";
    desktop.loop.advance(std::chrono::seconds(10));
    EXPECT_TRUE(state.undoOffers().standing().empty());
    state.undoOffers().undo(app::Undoable::HistoryClearing);
    EXPECT_LE(state.historyManager().entries().size(), 1U);
    EXPECT_EQ(state.storageManager().settings().adaptiveSystemPrompt, QString());
}

TEST_F(LearningInApp, SamplesOfTheLastRunAreLearnedFromAtTheStart) {
    QByteArray samples;
    for (int number = 1; number <= 41; ++number)
        samples += "\"sample " + QByteArray::number(number) + "\",";
    desktop.fileSystem.put(u"/data/Tavrelon/adaptive_prompt_state.json"_s,
                           "{\"pendingInputs\":[" + samples.chopped(1) + "]}");
    start();
    desktop.loop.runToEnd();
    EXPECT_EQ(program->appState().storageManager().settings().adaptiveSystemPrompt, u"Write tersely."_s);
    EXPECT_TRUE(desktop.fileSystem.content(u"/data/Tavrelon/adaptive_prompt_state.json"_s)
                    .startsWith(R"({"pendingInputs":["sample 41"],"lastUpdatedAt":)"));
}

TEST_F(LearningInApp, TheCloneServiceAsksTheAddressOfTheSettings) {
    desktop.defaultsStore.setData(persistence::defaults_keys::settings, R"({"cloneApiBaseURL":" scrape.test:3002 "})");
    start();
    desktop.httpSession.answer(500, "first");
    desktop.httpSession.answer(500, "Rate limit reached.");
    try {
        runTask(desktop.loop, program->appState().cloneService().learn(u"https://people.test"_s, CloneInput::Page));
        ADD_FAILURE() << "nothing failed";
    } catch (const text::LocalizedError& error) {
        EXPECT_EQ(error.localizedDescription(), u"Rate limit reached."_s);
    }
    EXPECT_EQ(desktop.httpSession.requests().at(0).url, QUrl(u"http://scrape.test:3002/v0/scrape"_s));
}

}  // namespace tavrelon::learning
