#include <gtest/gtest.h>

#include <QCoreApplication>

#include "contract/http_session_qt_driver.h"
#include "generation/ai_service.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"

/// The generation services over a real network connection, against the stand-in service as its users steer it.
namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

template <typename T>
async::Task<void> keep(async::Task<T> task, std::optional<T>& slot, QString& error) {
    try {
        slot = co_await std::move(task);
    } catch (const std::exception& thrown) {
        error = text::localizedDescription(thrown);
    }
}

}  // namespace

class RoundTripTest : public ::testing::Test {
 public:
    tavrelon::testing::QtHttpDriver wire;
    tavrelon::testing::RecordingLog log;
    PollinationsService gateway{wire.loop,
                                wire.session,
                                log,
                                endpoints(),
                                {.defaultPollinationsApiKey = {}, .glmApiKey = u"glm"_s, .nvidiaApiKey = {}}};
    scenes::SceneRouter router;
    TavrelonAIService assistant{gateway, router, log};

    ServiceEndpoints endpoints() const {
        return {.pollinationsBaseURL = wire.service.url(u"/pollinations"_s),
                .glmBaseURL = wire.service.url(u"/glm"_s),
                .nvidiaChatCompletionsURL = wire.service.url(u"/nvidia/v1/chat/completions"_s),
                .ollamaCloudTagsURL = wire.service.url(u"/ollama/api/tags"_s),
                .ollamaCloudChatURL = wire.service.url(u"/ollama/api/chat"_s),
                .ollamaLocalChatURL = wire.service.url(u"/local/api/chat"_s),
                .cloneApiBaseURL = {},
                .builtInPollinationsKey = {},
                .builtInGLMKey = {},
                .builtInNvidiaApiKey = u"nv"_s};
    }

    template <typename T>
    T run(async::Task<T> task) {
        std::optional<T> slot;
        QString error;
        async::TaskScope scope(wire.loop);
        scope.spawn(keep(std::move(task), slot, error));
        EXPECT_TRUE(wire.runUntil([&] { return slot || !error.isNull(); }));
        if (!slot)
            throw std::runtime_error(error.toStdString());
        return std::move(*slot);
    }

    /// Steers the service as a script would, over its control address.
    int control(const QString& path, const QByteArray& body = "{}") {
        const auto answer = run(wire.session.send({.method = "POST",
                                                   .url = wire.url("/control/"_L1 + path),
                                                   .headers = {{"Content-Type", "application/json"}},
                                                   .body = body}));
        return answer ? answer->status : 0;
    }
};

TEST_F(RoundTripTest, ATextRequestComesBackThroughTheChain) {
    EXPECT_EQ(run(assistant.generate({.input = u"grüße"_s})).text, u"GRÜSSE"_s);
    ASSERT_EQ(control(u"script"_s, R"({"answers":[{"path":"/nvidia/","status":500,"body":"down"},
        {"path":"/pollinations/","fault":"truncate"},{"model":"glm-4v-flash","content":"from GLM"}]})"),
              200);
    EXPECT_EQ(run(assistant.generate({.input = u"hello"_s})).text, u"from GLM"_s);
    EXPECT_EQ(wire.service.ledger().requests().back().path, u"/glm/chat/completions"_s);
    EXPECT_EQ(control(u"script"_s, R"([{"statsu":500}])"), 400) << "a misspelt script is heard of";
    EXPECT_EQ(control(u"reset"_s), 200);
    EXPECT_EQ(wire.requestCount(), 0U);
}

TEST_F(RoundTripTest, BadAnswersOfEveryModelEndInOneReadableError) {
    for (const QByteArray answer :
         {R"({"bodyBase64":"//4="})", R"({"json":{"choices":[]}})", R"({"status":429,"body":"busy"})",
          R"({"fault":"reset"})", R"({"fault":"notHttp"})", R"({"fillerBytes":70000000})"}) {
        ASSERT_EQ(control(u"script"_s, R"({"default":)" + answer + "}"), 200);
        try {
            run(assistant.generate({.input = u"hello"_s}));
            ADD_FAILURE() << answer.toStdString();
        } catch (const std::runtime_error& error) {
            const auto told = QString::fromUtf8(error.what());
            EXPECT_TRUE(told.startsWith(u"Generation failed: "_s)) << error.what();
            EXPECT_FALSE(told.contains(u"glm/chat"_s)) << "no addresses in errors";
        }
    }
}

TEST_F(RoundTripTest, OllamaSpeaksItsOwnProtocol) {
    EXPECT_EQ(run(gateway.fetchOllamaCloudModels()), (QStringList{u"llava"_s, u"qwen-vl"_s}));
    gateway.ollamaEnabled = true;
    gateway.ollamaMode = OllamaMode::local;
    gateway.ollamaLocalModel = u"llava"_s;
    EXPECT_EQ(run(gateway.generateText(u"S"_s, u"what is it"_s, QByteArray("\xff\xd8"), 10, 0.7F)), u"WHAT IS IT"_s);
    EXPECT_EQ(wire.service.ledger().requests().back().path, u"/local/api/chat"_s);
}

TEST_F(RoundTripTest, ImagesComeFromEitherServiceAndByRedirects) {
    const auto image = run(assistant.generate({.input = u"draw 100% a cat?"_s})).imageData;
    ASSERT_TRUE(image);
    EXPECT_TRUE(image->startsWith("\x89PNG"));
    EXPECT_TRUE(
        wire.service.ledger().requests().back().target.startsWith("/pollinations/image/100%20a%20cat?model=zimage&"))
        << wire.service.ledger().requests().back().target.toStdString();

    ASSERT_EQ(control(u"script"_s, R"([{"path":"/image/","status":502,"body":"x"}])"), 200);
    EXPECT_EQ(run(assistant.generate({.input = u"draw a cat"_s})).imageData, image);
    EXPECT_EQ(wire.service.ledger().requests().back().path, u"/glm/images/generations"_s);

    const auto address = wire.service.url(u"/files/cat.png"_s).toUtf8();
    ASSERT_EQ(control(u"script"_s, R"([{"path":"/image/","status":502,"body":"x"},
        {"path":"/images/","json":{"data":[{"url":")" +
                                       address + R"("}]}},
        {"path":"/files/","status":302,"headers":{"Location":"/moved/cat.png"},"body":""}])"),
              200);
    EXPECT_EQ(run(assistant.generate({.input = u"draw a cat"_s})).imageData, image);
    EXPECT_EQ(wire.service.ledger().requests().back().path, u"/moved/cat.png"_s);
}

}  // namespace tavrelon::generation

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
