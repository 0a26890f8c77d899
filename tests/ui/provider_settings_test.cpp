#include <gtest/gtest.h>

#include "app/provider_settings.h"
#include "support/qt_gtest.h"
#include "support/test_desktop.h"
#include "ui/settings/provider_settings_model.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
using generation::OllamaMode;
using generation::PollinationsService;
using tavrelon::testing::FakeHttpSession;
namespace entries = persistence::defaults_keys;

class ProviderSettingsTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desktop;
    persistence::StorageManager storage = openStorage();
    PollinationsService service{desktop.loop, desktop.httpSession, desktop.log,
                                generation::ServiceEndpoints::builtIn()};
    persistence::ChangeSubscription following = app::followSettings(storage, service);
    ProviderSettingsModel page{{desktop.loop, storage, service, desktop.workspace, desktop.httpSession}};

    persistence::StorageManager openStorage() {
        return {desktop.defaultsStore, desktop.fileSystem, desktop.log, desktop.loop, u"/data/Tavrelon"_s};
    }
    /// What a next start would find.
    persistence::AppSettings stored() { return openStorage().settings(); }

    void answerWithModels(int count) {
        QByteArray list;
        for (int index = 0; index < count; ++index)
            list += (index ? ",{\"name\":\"model-" : "{\"name\":\"model-") + QByteArray::number(index) + "\"}";
        desktop.httpSession.answer(200, "{\"models\":[" + list + "]}");
    }
};

TEST_F(ProviderSettingsTest, TurningOneOnTurnsTheOthersOffAndIsInUseAtOnce) {
    page.setNvidiaApiKey(u"  nvapi-1 \n"_s);
    EXPECT_EQ(service.configuration.nvidiaApiKey, std::nullopt) << "only in use while its switch is on";
    page.setEnableNvidiaLocal(true);
    EXPECT_TRUE(service.configuration.nvidiaEnabled);
    EXPECT_EQ(service.configuration.nvidiaApiKey, u"nvapi-1"_s);

    page.setEnableOllamaVision(true);
    EXPECT_TRUE(service.configuration.ollamaEnabled);
    EXPECT_FALSE(service.configuration.nvidiaEnabled);
    EXPECT_EQ(service.configuration.nvidiaApiKey, std::nullopt);
    EXPECT_EQ(desktop.defaultsStore.string(entries::nvidiaApiKey), u"  nvapi-1 \n"_s) << "as typed";
    EXPECT_TRUE(stored().enableOllamaVision);
    EXPECT_FALSE(stored().enableNvidiaLocal);

    page.setPollinationsBaseURL(u" http://gateway.example/v1// "_s);
    page.setPollinationsVisionModel(u" openai.pollinations"_s);
    page.setEnableCustomPollinations(true);
    EXPECT_FALSE(service.configuration.ollamaEnabled);
    EXPECT_FALSE(stored().enableOllamaVision);
    EXPECT_TRUE(service.configuration.pollinationsCustomEnabled);
    EXPECT_EQ(service.configuration.pollinationsBaseURLOverride, u"http://gateway.example/v1"_s);
    EXPECT_EQ(service.configuration.pollinationsVisionModelOverride, u"openai"_s);
    EXPECT_EQ(service.configuration.pollinationsImageModelOverride, u"zimage"_s);
    EXPECT_EQ(stored().pollinationsBaseURL, u" http://gateway.example/v1// "_s) << "as typed";

    page.setEnableNvidiaLocal(true);
    EXPECT_FALSE(service.configuration.pollinationsCustomEnabled);
    EXPECT_FALSE(page.enableCustomPollinations());
    page.setEnableNvidiaLocal(false);
    EXPECT_FALSE(page.enableCustomPollinations() || page.enableOllamaVision()) << "off touches only that one";
}

TEST_F(ProviderSettingsTest, AServerOnThisMachineIsFoundAndTakenWithOneClick) {
    QStringList asked;
    desktop.httpSession.otherwise = [&](const platform::HttpRequest& request) {
        asked.append(request.url.toString());
        EXPECT_EQ(request.resourceTimeout, std::chrono::milliseconds(300));
        EXPECT_TRUE(request.staysAtOrigin);
        const auto url = request.url.toString();
        platform::HttpResponse response{.status = 200};
        if (url == "http://127.0.0.1:11434/v1/models"_L1)
            response.body = R"({"data":[{"id":"seer"},{"id":"writer"},{"id":"index"},{"id":7},{"id":""}]})";
        else if (url == "http://127.0.0.1:11434/api/show"_L1)
            response.body = request.body.contains("seer")     ? R"({"capabilities":["completion","vision"]})"
                            : request.body.contains("writer") ? R"({"capabilities":["completion","tools"]})"
                                                              : R"({"capabilities":["embedding"]})";
        else if (url == "http://127.0.0.1:8080/v1/models"_L1)
            response.body = R"({"models":[{"name":"m.gguf","capabilities":["completion"]}],"data":[{"id":"m.gguf"}]})";
        else if (url == "http://127.0.0.1:1234/v1/models"_L1)
            response.body = R"(["no server of models"])";
        return FakeHttpSession::Reply{response};
    };
    page.found()->look();
    page.found()->look();
    desktop.loop.runUntilIdle();
    EXPECT_EQ(asked.size(), 6) << "each place once, and each of Ollama's models";
    const auto model = [](const char* name, bool isTextOnly) {
        return QVariantMap{{u"name"_s, QString::fromLatin1(name)}, {u"isTextOnly"_s, isTextOnly}};
    };
    const auto servers = page.found()->servers();
    ASSERT_EQ(servers.size(), 2);
    EXPECT_EQ(servers[0].toMap()[u"models"_s], (QVariantList{model("seer", false), model("writer", true)}));
    EXPECT_EQ(servers[1].toMap()[u"models"_s], (QVariantList{model("m.gguf", true)}));

    page.found()->take(u"http://127.0.0.1:11434"_s, u"index"_s);
    EXPECT_TRUE(page.found()->isNothingChosen()) << "it is not on offer";
    page.setStaysWithGateway(false);  // of another server
    page.found()->take(u"http://127.0.0.1:11434"_s, u"writer"_s);
    EXPECT_EQ(service.configuration.pollinationsBaseURL(), u"http://127.0.0.1:11434"_s);
    EXPECT_TRUE(service.configuration.asksGatewayOnly());
    EXPECT_EQ(stored().textOnlyModel, u"writer"_s);
    page.found()->take(u"http://127.0.0.1:11434"_s, u"seer"_s);
    EXPECT_EQ(stored().pollinationsVisionModel, u"seer"_s);
    EXPECT_EQ(stored().textOnlyModel, QString());
}

TEST_F(ProviderSettingsTest, ATrialTellsTheAnswerOrTheReasonAndIsForgottenWithTheNextChange) {
    page.setPollinationsBaseURL(u"http://127.0.0.1:9"_s);
    page.setEnableCustomPollinations(true);
    auto& trial = *page.trial();
    desktop.httpSession.answer(
        {platform::HttpResponse{.status = 200, .body = R"({"choices":[{"message":{"content":" ready\n"}}]})"},
         std::chrono::milliseconds(1500)});
    trial.start();
    trial.start();
    EXPECT_TRUE(trial.isBusy());
    desktop.loop.advance(std::chrono::seconds(2));
    EXPECT_FALSE(trial.isBusy() || trial.hasFailed());
    EXPECT_EQ(trial.outcome(), u"ready"_s);
    EXPECT_EQ(trial.seconds(), u"1.5"_s);
    EXPECT_EQ(desktop.httpSession.requests().size(), 1U);

    desktop.httpSession.fail(platform::HttpError::Code::Transport, u"Nobody is there."_s);
    trial.start();
    desktop.loop.runUntilIdle();
    EXPECT_TRUE(trial.hasFailed());
    EXPECT_TRUE(trial.outcome().contains(u"Nobody is there."_s)) << qPrintable(trial.outcome());
    page.setEnableOllamaVision(true);
    page.setOllamaMode(u"local"_s);
    page.setOllamaLocalModel(u"llava"_s);
    desktop.httpSession.answer(200, R"({"message":{"content":"ready"}})");
    trial.start();
    desktop.loop.runUntilIdle();
    EXPECT_EQ(trial.outcome(), u"ready"_s) << "of the one that is chosen, though it is asked about pictures alone";
    EXPECT_EQ(desktop.httpSession.requests().back().url.path(), u"/api/chat"_s);
    page.setEnableCustomPollinations(true);
    page.setPollinationsVisionModel(u"other"_s);
    EXPECT_FALSE(trial.hasFailed());
    EXPECT_EQ(trial.outcome(), QString());

    desktop.httpSession.neverAnswer();
    trial.start();
    desktop.loop.runUntilIdle();
    page.setPollinationsVisionModel(u"another"_s);
    desktop.loop.runUntilIdle();
    EXPECT_FALSE(trial.isBusy());
    EXPECT_EQ(desktop.httpSession.abandoned(), 1);
}

TEST_F(ProviderSettingsTest, BlanksCountAsNothingAndNothingIsRefused) {
    EXPECT_TRUE(page.cloudKeyMissing() && page.cloudModelMissing());
    EXPECT_FALSE(page.nvidiaKeyMissing()) << "its switch is off";
    page.setEnableNvidiaLocal(true);
    page.setNvidiaApiKey(u" \t"_s);
    desktop.loop.runUntilIdle();
    EXPECT_TRUE(page.nvidiaKeyMissing());
    EXPECT_TRUE(service.configuration.nvidiaEnabled);
    EXPECT_EQ(service.configuration.nvidiaApiKey, std::nullopt);
    EXPECT_EQ(desktop.defaultsStore.string(entries::nvidiaApiKey), u" \t"_s);

    page.setOllamaLocalEndpoint(u"no address at all"_s);
    EXPECT_EQ(service.configuration.ollamaLocalEndpoint, u"no address at all"_s);
    page.setOllamaLocalModel(u"  "_s);
    EXPECT_EQ(service.configuration.ollamaLocalModel, std::nullopt);
    page.setOllamaMode(u"local"_s);
    EXPECT_EQ(service.configuration.ollamaMode, OllamaMode::local);
    page.setOllamaMode(QString());
    EXPECT_EQ(service.configuration.ollamaMode, OllamaMode::cloud);
    page.setPollinationsImageModel(QString());
    EXPECT_TRUE(page.imageModelMissing());
    EXPECT_FALSE(page.baseURLMissing() || page.visionModelMissing());
}

TEST_F(ProviderSettingsTest, AKeyStaysWithTheServerForWhichItWasTyped) {
    // Stored by an older version, without a server: it belongs to the one that is in use.
    desktop.defaultsStore.setString(entries::pollinationsApiKey, u"old\n"_s);
    storage.changeSettings([](auto& settings) { settings.pollinationsBaseURL = u"https://a.example/v1"_s; });
    storage.saveSettings();
    auto next = openStorage();
    const auto followingNext = app::followSettings(next, service);
    EXPECT_EQ(service.configuration.pollinationsApiKey, u"old"_s);

    ProviderSettingsModel opened{{desktop.loop, next, service, desktop.workspace, desktop.httpSession}};
    for (const auto* other :
         {"https://b.example/v1", "http://a.example/v1", "https://a.example:444", "a.example", ""}) {
        SCOPED_TRACE(other);
        opened.setPollinationsBaseURL(QString::fromLatin1(other));
        EXPECT_EQ(service.configuration.pollinationsApiKey, std::nullopt);
        EXPECT_EQ(opened.pollinationsApiKey(), QString()) << "it is asked for anew";
        EXPECT_EQ(opened.pollinationsKeyNote(), u"keyElsewhere"_s);
        const auto later = openStorage();
        const auto found = app::serviceConfiguration({}, later.settings(), later.keys());
        EXPECT_EQ(found.pollinationsApiKey, std::nullopt) << "nor at the next start";
    }
    opened.setPollinationsBaseURL(u"https://A.example:443/v2"_s);
    EXPECT_EQ(service.configuration.pollinationsApiKey, u"old"_s) << "another path of the same server";
    EXPECT_EQ(opened.pollinationsKeyNote(), QString());

    opened.setPollinationsBaseURL(u"https://b.example"_s);
    opened.setPollinationsApiKey(u"new"_s);
    desktop.loop.runUntilIdle();
    EXPECT_EQ(service.configuration.pollinationsApiKey, u"new"_s);
    opened.setPollinationsBaseURL(u"https://a.example"_s);
    EXPECT_EQ(service.configuration.pollinationsApiKey, std::nullopt);

    opened.setOllamaLocalApiKey(u"local"_s);
    desktop.loop.runUntilIdle();
    EXPECT_EQ(service.configuration.ollamaLocalApiKey, u"local"_s);
    opened.setOllamaLocalEndpoint(u"http://box:11434/api/chat"_s);
    EXPECT_EQ(service.configuration.ollamaLocalApiKey, std::nullopt);
    opened.setOllamaLocalApiKey(u"box"_s);
    EXPECT_EQ(opened.ollamaLocalKeyNote(), u"keyUnencrypted"_s);
}

TEST_F(ProviderSettingsTest, ModelsAreListedOnceUnlessAskedAgain) {
    auto& models = *page.cloudModels();
    answerWithModels(10'000);
    models.load();
    models.refresh();
    models.load();
    EXPECT_TRUE(models.isLoading());
    desktop.loop.runToEnd();
    ASSERT_EQ(desktop.httpSession.requests().size(), 1U);
    EXPECT_EQ(desktop.httpSession.requests()[0].method, "GET");
    EXPECT_EQ(desktop.httpSession.requests()[0].url, QUrl(generation::ServiceEndpoints::builtIn().ollamaCloudTagsURL));
    EXPECT_EQ(models.names().size(), 10'000);
    EXPECT_EQ(models.names()[models.find(u"MODEL-77"_s, 0)], u"model-77"_s);
    EXPECT_EQ(models.find(u"nobody"_s, 5), -1);
    models.load();
    desktop.loop.runToEnd();
    EXPECT_EQ(desktop.httpSession.requests().size(), 1U);

    answerWithModels(0);
    models.refresh();
    desktop.loop.runToEnd();
    EXPECT_EQ(models.error(), u"Parse error: No Ollama models found"_s);
    EXPECT_EQ(models.names().size(), 10'000) << "left as it was";
    desktop.httpSession.fail(platform::HttpError::Code::Transport, u"The network is down."_s);
    models.load();
    EXPECT_EQ(models.error(), QString()) << "what has failed is tried again when it is looked at again";
    desktop.loop.runToEnd();
    EXPECT_EQ(models.error(), u"The network is down."_s);
    EXPECT_FALSE(models.isLoading());
}

}  // namespace tavrelon::ui
