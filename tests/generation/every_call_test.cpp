#include "generation/ai_service.h"
#include "generation/gateway_fixture.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using tavrelon::testing::runTask;

namespace {

enum class Wish : std::uint8_t { Words, Sight, Picture };

/// A way to a model, and what comes of a fault of the call at its end.
struct Way {
    const char* name;
    Wish wish;
    QString address;                ///< a part of the call's address that no other call has
    std::chrono::seconds patience;  ///< with a silent service
    QString refused;                ///< of status 500
    QString malformed;              ///< of the document {}
    void (*choose)(PollinationsService& service) = [](PollinationsService&) {};
};

template <PollinationsModel model>
void useModel(PollinationsService& service) {
    service.configuration.textModels = {model};
}

template <OllamaMode mode>
void useOllama(PollinationsService& service) {
    service.configuration.ollamaEnabled = true;
    service.configuration.ollamaMode = mode;
    service.configuration.ollamaCloudModel = service.configuration.ollamaLocalModel = u"llava"_s;
    service.configuration.ollamaCloudApiKey = u"key"_s;
}

void useOwnGateway(PollinationsService& service) {
    service.configuration.textModels = {};
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsBaseURLOverride = u"https://mine.test"_s;
    service.configuration.pollinationsVisionModelOverride = u"own"_s;
}

const auto refused = u"API error (500): why"_s;
const auto noPicture = u"Image generation failed with status 500"_s;
const auto notInShape = u"Parse error: Invalid response format"_s;
const auto noOllamaReply = u"Parse error: Invalid Ollama response format"_s;

const Way ways[] = {
    {"Nvidia", Wish::Words, u"//nvidia.test"_s, 60s, u"why"_s, u"Parse error: Invalid NVIDIA response format"_s,
     useModel<PollinationsModel::nvidiaNemotron>},
    {"Gateway", Wish::Words, u"pollinations.test/v1"_s, 30s, u"why"_s, notInShape, useModel<PollinationsModel::openai>},
    {"GLM", Wish::Words, u"/v4/chat"_s, 30s, u"why"_s, u"Parse error: Invalid GLM response format"_s,
     useModel<PollinationsModel::glmTextFlash>},
    {"OwnGateway", Wish::Words, u"//mine.test"_s, 300s, refused, notInShape, useOwnGateway},
    {"OllamaCloud", Wish::Sight, u"//ollama.test"_s, 60s, refused, noOllamaReply, useOllama<OllamaMode::cloud>},
    {"OllamaLocal", Wish::Sight, u"//localhost"_s, 300s, refused, noOllamaReply, useOllama<OllamaMode::local>},
    {"ImageGet", Wish::Picture, u"/image/"_s, 120s, noPicture, u"Invalid image data received"_s},
    {"GLMImages", Wish::Picture, u"/v4/images"_s, 60s, refused, u"Parse error: No GLM image payload found"_s},
    {"Download", Wish::Picture, u"//files.test"_s, 30s, noPicture, u"Invalid image data received"_s},
};

}  // namespace

class EveryCallTest : public tavrelon::testing::GatewayFixture, public ::testing::WithParamInterface<Way> {
 public:
    scenes::SceneRouter router;
    TavrelonAIService assistant{service, router, log};

    /// All that the user and the log are told when the call meets the fault; what would answer in its place is down.
    QString told(const tavrelon::testing::FakeHttpSession::Reply& fault) {
        const auto& way = GetParam();
        way.choose(service);
        log.clear();
        http.otherwise = [&](const platform::HttpRequest& request) {
            const auto glmLeadsOn = way.address.contains("files"_L1) && request.url.host() == "glm.test"_L1;
            if (request.url.toString().contains(way.address))
                return std::optional(fault);
            if (glmLeadsOn)
                return std::optional(reply(200, R"({"data":[{"url":"https://files.test/cat.png"}]})"));
            return std::optional(reply(503, "down"));
        };
        GenerationRequest request{.input = way.wish == Wish::Picture ? u"draw a cat"_s : u"hello"_s};
        if (way.wish == Wish::Sight)
            request.context.emplace().screenshotData = QByteArray("\xff\xd8");
        try {
            runTask(loop, assistant.generate(std::move(request)));
        } catch (const ProcessingError& error) {
            return error.localizedDescription() + u'\n' + log.lines().join(u'\n') + u'\n';
        }
        return u"answered"_s;
    }
    static tavrelon::testing::FakeHttpSession::Reply reply(int status, const QByteArray& body) {
        return {
            platform::HttpResponse{.status = status, .headers = {{"Content-Type", "application/json"}}, .body = body}};
    }
};

TEST_P(EveryCallTest, GoesThroughTheExchangeAndTellsItsFaults) {
    const auto says = [](const QString& all, const QString& text) { return all.contains(": "_L1 + text + u'\n'); };
    const auto began = loop.now();
    const auto silent = told({platform::HttpResponse{}, 24h});
    EXPECT_EQ(loop.now() - began, GetParam().patience);
    EXPECT_TRUE(silent.contains("timed out"_L1)) << silent.toStdString();
    for (const auto& [fault, words] :
         {std::pair(reply(500, "why"), GetParam().refused),
          std::pair(reply(200, "{}"), GetParam().malformed),
          {{std::unexpected(platform::HttpError{platform::HttpError::Code::Transport, u"It broke."_s})},
           u"It broke."_s}}) {
        const auto all = told(fault);
        EXPECT_TRUE(says(all, words)) << words.toStdString() << " is not in\n" << all.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, EveryCallTest, ::testing::ValuesIn(ways),
                         [](const auto& info) { return info.param.name; });

}  // namespace tavrelon::generation
