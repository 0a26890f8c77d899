#include <gtest/gtest.h>

#include "app/provider_settings.h"
#include "support/qt_gtest.h"
#include "support/test_desktop.h"
#include "ui/settings/provider_settings_model.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
using generation::OllamaMode;
using generation::PollinationsService;
namespace entries = persistence::defaults_keys;

class ProviderSettingsTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desktop;
    persistence::StorageManager storage = openStorage();
    PollinationsService service{
        desktop.loop, desktop.httpSession, desktop.log, generation::ServiceEndpoints::builtIn(), {}};
    ProviderSettingsModel page{{desktop.loop, storage, service, desktop.workspace}};

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
    EXPECT_EQ(service.nvidiaApiKey, std::nullopt) << "only in use while its switch is on";
    page.setEnableNvidiaLocal(true);
    EXPECT_TRUE(service.nvidiaEnabled);
    EXPECT_EQ(service.nvidiaApiKey, u"nvapi-1"_s);

    page.setEnableOllamaVision(true);
    EXPECT_TRUE(service.ollamaEnabled);
    EXPECT_FALSE(service.nvidiaEnabled);
    EXPECT_EQ(service.nvidiaApiKey, std::nullopt);
    EXPECT_EQ(desktop.defaultsStore.string(entries::nvidiaApiKey), u"  nvapi-1 \n"_s) << "as typed";
    EXPECT_TRUE(stored().enableOllamaVision);
    EXPECT_FALSE(stored().enableNvidiaLocal);

    page.setPollinationsBaseURL(u" http://gateway.example/v1// "_s);
    page.setPollinationsVisionModel(u" openai.pollinations"_s);
    service.pollinationsBaseURLOverride.reset();
    page.setEnableCustomPollinations(true);
    EXPECT_FALSE(service.ollamaEnabled);
    EXPECT_FALSE(stored().enableOllamaVision);
    EXPECT_TRUE(service.pollinationsCustomEnabled);
    EXPECT_EQ(service.pollinationsBaseURLOverride, u"http://gateway.example/v1"_s);
    EXPECT_EQ(service.pollinationsVisionModelOverride, u"openai"_s);
    EXPECT_EQ(service.pollinationsImageModelOverride, u"zimage"_s);
    EXPECT_EQ(stored().pollinationsBaseURL, u" http://gateway.example/v1// "_s) << "as typed";

    page.setEnableNvidiaLocal(true);
    EXPECT_FALSE(service.pollinationsCustomEnabled);
    EXPECT_FALSE(page.enableCustomPollinations());
    page.setEnableNvidiaLocal(false);
    EXPECT_FALSE(page.enableCustomPollinations() || page.enableOllamaVision()) << "off touches only that one";
}

TEST_F(ProviderSettingsTest, BlanksCountAsNothingAndNothingIsRefused) {
    EXPECT_TRUE(page.cloudKeyMissing() && page.cloudModelMissing());
    EXPECT_FALSE(page.nvidiaKeyMissing()) << "its switch is off";
    page.setEnableNvidiaLocal(true);
    page.setNvidiaApiKey(u" \t"_s);
    EXPECT_TRUE(page.nvidiaKeyMissing());
    EXPECT_TRUE(service.nvidiaEnabled);
    EXPECT_EQ(service.nvidiaApiKey, std::nullopt);
    EXPECT_EQ(desktop.defaultsStore.string(entries::nvidiaApiKey), u" \t"_s);

    page.setOllamaLocalEndpoint(u"no address at all"_s);
    EXPECT_EQ(service.ollamaLocalEndpoint, u"no address at all"_s);
    page.setOllamaLocalModel(u"  "_s);
    EXPECT_EQ(service.ollamaLocalModel, std::nullopt);
    page.setOllamaMode(u"local"_s);
    EXPECT_EQ(service.ollamaMode, OllamaMode::local);
    page.setOllamaMode(QString());
    EXPECT_EQ(service.ollamaMode, OllamaMode::cloud);
    page.setPollinationsImageModel(QString());
    EXPECT_TRUE(page.imageModelMissing());
    EXPECT_FALSE(page.baseURLMissing() || page.visionModelMissing());
}

TEST_F(ProviderSettingsTest, AKeyStaysWithTheServerForWhichItWasTyped) {
    // Stored by an older version, without a server: it belongs to the one that is in use.
    desktop.defaultsStore.setString(entries::pollinationsApiKey, u"old\n"_s);
    storage.changeSettings([](auto& settings) { settings.pollinationsBaseURL = u"https://a.example/v1"_s; });
    app::applyProviderSettings(storage.settings(), desktop.defaultsStore, service);
    EXPECT_EQ(service.pollinationsApiKey, u"old"_s);

    ProviderSettingsModel opened{{desktop.loop, storage, service, desktop.workspace}};
    for (const auto* other :
         {"https://b.example/v1", "http://a.example/v1", "https://a.example:444", "a.example", ""}) {
        SCOPED_TRACE(other);
        opened.setPollinationsBaseURL(QString::fromLatin1(other));
        EXPECT_EQ(service.pollinationsApiKey, std::nullopt);
        EXPECT_EQ(opened.pollinationsApiKey(), QString()) << "it is asked for anew";
        EXPECT_EQ(opened.pollinationsKeyNote(), u"keyElsewhere"_s);
        service.pollinationsApiKey = u"left over"_s;
        app::applyProviderSettings(storage.settings(), desktop.defaultsStore, service);
        EXPECT_EQ(service.pollinationsApiKey, std::nullopt) << "nor at the next start";
    }
    opened.setPollinationsBaseURL(u"https://A.example:443/v2"_s);
    EXPECT_EQ(service.pollinationsApiKey, u"old"_s) << "another path of the same server";
    EXPECT_EQ(opened.pollinationsKeyNote(), QString());

    opened.setPollinationsBaseURL(u"https://b.example"_s);
    opened.setPollinationsApiKey(u"new"_s);
    EXPECT_EQ(service.pollinationsApiKey, u"new"_s);
    opened.setPollinationsBaseURL(u"https://a.example"_s);
    EXPECT_EQ(service.pollinationsApiKey, std::nullopt);

    opened.setOllamaLocalApiKey(u"local"_s);
    EXPECT_EQ(service.ollamaLocalApiKey, u"local"_s);
    opened.setOllamaLocalEndpoint(u"http://box:11434/api/chat"_s);
    EXPECT_EQ(service.ollamaLocalApiKey, std::nullopt);
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
    models.refresh();
    EXPECT_EQ(models.error(), QString());
    desktop.loop.runToEnd();
    EXPECT_EQ(models.error(), u"The network is down."_s);
    EXPECT_FALSE(models.isLoading());
}

}  // namespace tavrelon::ui
