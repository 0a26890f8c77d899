
#include <algorithm>

#include "generation/destinations.h"
#include "generation/gateway_fixture.h"
#include "generation/image_prompt_enhancement.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using tavrelon::testing::runTask;

namespace {
const QString nemotron = u"nvidia/nemotron-nano-12b-v2-vl"_s;
const QByteArray jpeg("\xff\xd8");
}  // namespace

class TextChainTest : public tavrelon::testing::GatewayFixture {
 public:
    bool logged(const QString& line) const { return log.contains("[Pollinations] "_L1 + line); }
};

TEST_F(TextChainTest, ATextRequestWalksTheTextModelsAndThrowsTheFirstError) {
    http.answer(500, "one");
    http.answer(429, "two");
    http.answer(400, R"({"code":"1210"})");
    EXPECT_EQ(generateError(), u"API error (500): one"_s);
    EXPECT_EQ(askedModels(), (QStringList{nemotron, u"openai"_s, u"glm-4v-flash"_s}));
    EXPECT_EQ(log.lines(),
              (QStringList{u"[Pollinations] Text generation failed with NVIDIA Nemotron Nano 12B VL: one"_s,
                           u"[Pollinations] Text generation failed with OpenAI: two"_s,
                           u"[Pollinations] GLM error 1210. Skipping model."_s}));
    EXPECT_EQ(header(http.requests()[0], "Authorization"), "Bearer nvapi-built-in");
    EXPECT_EQ(header(http.requests()[1], "Authorization"), "Bearer sk_default");
    EXPECT_EQ(header(http.requests()[2], "Authorization"), "Bearer glm.key");
}

TEST_F(TextChainTest, TheFirstAnswerEndsTheWalkEvenIfItIsEmpty) {
    http.fail(platform::HttpError::Code::Transport, u"Could not connect to nvidia.test."_s);
    http.answer(200, chatReply(QString()));
    EXPECT_EQ(generate(), u""_s);
    EXPECT_TRUE(
        logged(u"Text generation failed with NVIDIA Nemotron Nano 12B VL: Could not connect to nvidia.test."_s));
}

TEST_F(TextChainTest, AnImageGoesToTheVisionModelsFirstAndIsThenLeftOut) {
    for (int i = 0; i < 4; ++i)
        http.answer(500, "no");
    http.answer(400, R"({"code":"1210"})");
    EXPECT_EQ(generateError(jpeg), u"API error (500): no"_s);
    EXPECT_EQ(askedModels(), (QStringList{nemotron, u"openai"_s, nemotron, u"openai"_s, u"glm-4v-flash"_s}));
    const auto carriesImage = [this](std::size_t index) { return http.requests()[index].body.contains("image_url"); };
    EXPECT_TRUE(carriesImage(0) && carriesImage(1));
    EXPECT_FALSE(carriesImage(2) || carriesImage(3) || carriesImage(4));
    EXPECT_TRUE(logged(u"Text generation failed with GLM 4V Flash (no image): API error (400): {\"code\":\"1210\"}"_s));

    log.clear();
    http.answer(500, "no");
    http.answer(500, "no");
    http.answer(200, chatReply(u"blind"_s));
    EXPECT_EQ(generate(jpeg), u"blind"_s);
    const auto before = http.requests().size();
    http.answer(401, "who are you");
    http.answer(500, "no");
    http.answer(200, chatReply(u"blind"_s));
    EXPECT_EQ(generate(jpeg), u"blind"_s);
    EXPECT_EQ(askedModels().sliced(static_cast<qsizetype>(before)), (QStringList{nemotron, u"openai"_s, u"openai"_s}))
        << "who refused is not asked again";
}

TEST_F(TextChainTest, AServerOnThisMachineIsTheOnlyOneAskedUnlessTheUserSaysOtherwise) {
    const auto onlyOwnWasAsked = [this] {
        return std::ranges::all_of(http.requests(),
                                   [](const auto& request) { return request.url.host() == u"127.0.0.1"_s; });
    };
    service.configuration.fallBackToOtherServices.reset();
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsBaseURLOverride = u"http://127.0.0.1:8080"_s;
    service.configuration.pollinationsVisionModelOverride = u"mine"_s;
    http.answer(500, "cannot see");
    http.answer(200, chatReply(u"blind"_s));
    EXPECT_EQ(generate(jpeg), u"blind"_s) << "it may be a model for texts only";
    for (const auto& [image, asked] :
         {std::pair(std::optional<QByteArray>(), 503), std::pair(std::optional(jpeg), 404)}) {
        const auto before = http.requests().size();
        http.answer(asked, "off");
        EXPECT_TRUE(generateError(image).contains("off"_L1)) << "its own reason";
        EXPECT_EQ(http.requests().size(), before + 1);
    }
    http.answer(500, "no");
    http.answer(500, "no");
    EXPECT_EQ(runTask(loop, enhanceImagePrompt(service, u"a cat"_s, PromptSafety::Demanded)).isEmpty(), false);
    EXPECT_THROW(runTask(loop, service.downloadImage(QUrl(u"https://cdn.test/a.png"_s))), PollinationsError);
    EXPECT_THROW(runTask(loop, service.generateImageWithGLM(u"a cat"_s, 64, 64, u"hd"_s)), PollinationsError);
    EXPECT_TRUE(onlyOwnWasAsked());
    EXPECT_GE(http.requests().size(), 4U);

    service.configuration.fallBackToOtherServices = true;
    http.answer(503, "off");
    http.answer(200, chatReply(u"chain"_s));
    EXPECT_EQ(generate(), u"chain"_s);
    EXPECT_FALSE(onlyOwnWasAsked());
    service.configuration.fallBackToOtherServices.reset();
    service.configuration.pollinationsBaseURLOverride = u"https://gateway.example.org"_s;
    http.answer(503, "off");
    http.answer(200, chatReply(u"chain"_s));
    EXPECT_EQ(generate(), u"chain"_s) << "a public gateway is one of several";
}

TEST_F(TextChainTest, ARefusedKeyEndsTheChainBeforeAnotherServiceIsAsked) {
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsBaseURLOverride = u"http://mine.test"_s;
    service.configuration.pollinationsVisionModelOverride = u"my-model"_s;
    service.configuration.pollinationsApiKey = u"own"_s;
    EXPECT_TRUE(generateError().contains("without encryption"_L1));
    service.configuration.pollinationsCustomEnabled = false;
    service.configuration.nvidiaEnabled = true;
    service.configuration.nvidiaApiKey = u"own\r\nX: 1"_s;
    EXPECT_TRUE(generateError().contains("control character"_L1));
    EXPECT_TRUE(http.requests().empty());
}

TEST_F(TextChainTest, AServicesErrorIsShortAndRepeatsNothingOfThePrompt) {
    service.configuration.textModels = {PollinationsModel::openai};
    const auto secret = u"Tell nobody: the vault opens with \"4711\"\nand 芝麻开门吧亲爱的朋友们快来"_s;
    const auto errorFor = [&](const QByteArray& body) {
        http.answer(400, body);
        try {
            runTask(loop, generateText(service, {.system = u"Be brief.\nApplication: Vault"_s,
                                                 .user = u"User Input: hunter2\n"_s + secret,
                                                 .maxTokens = 10}));
        } catch (const text::LocalizedError& error) {
            return error.localizedDescription() + log.lines().join(u'\n');
        }
        return QString();
    };
    const auto quoted = text::compactJson(text::toJson(secret));
    for (const auto& body :
         {"cannot take: " + secret.toUtf8(), "{\"error\":" + quoted + "}", secret.toUtf8().repeated(500),
          QByteArray(R"({"error":"\u829d\u9ebb\u5f00\u95e8\u5427\u4eb2\u7231\u7684\u670b\u53cb\u4eec\u5feb\u6765"})"),
          QByteArray("no 'hunter2' for Vault"), QByteArray(190, 'x') + " " + secret.toUtf8()}) {
        const auto told = errorFor(body);
        ASSERT_TRUE(told.contains("API error (400): "_L1));
        for (const auto* piece : {"vault opens", "4711", "芝麻开门", "hunter2", "Vault"})
            EXPECT_FALSE(told.contains(QString::fromUtf8(piece))) << piece << " in " << told.toStdString();
        log.clear();
    }
    EXPECT_TRUE(errorFor(R"({"error":{"message":"model \"openai\" is\nnot here\u202e\u001b[2J"}})")
                    .startsWith(u"API error (400): {\"error\":{\"message\":\"model \"openai\" is not here [2J\"}}"_s));
    http.answer(500, QByteArray("ü").repeated(100'000));
    EXPECT_EQ(generateError(), u"API error (500): "_s + u"ü"_s.repeated(200) + u'…');
}

TEST_F(TextChainTest, OllamaTakesOverRequestsWithAnImageOnly) {
    service.configuration.ollamaEnabled = true;
    EXPECT_EQ(generateError(jpeg), u"Ollama cloud model is required"_s);
    EXPECT_TRUE(http.requests().empty());

    service.configuration.ollamaMode = OllamaMode::local;
    service.configuration.ollamaLocalModel = u"llava"_s;
    http.answer(500, "down");
    EXPECT_EQ(generateError(jpeg), u"API error (500): down"_s);
    ASSERT_EQ(http.requests().size(), 1U);
    EXPECT_EQ(http.requests()[0].url, QUrl(u"http://localhost:11434/api/chat"_s));
    service.configuration.ollamaLocalEndpoint = u"http://box:1/api/chat"_s;
    http.answer(200, R"({"message":{"content":"seen"}})");
    EXPECT_EQ(generate(jpeg), u"seen"_s);
    EXPECT_EQ(http.requests()[1].url.host(), u"box"_s);

    http.answer(200, chatReply(u"text"_s));
    EXPECT_EQ(generate(), u"text"_s);
    EXPECT_EQ(http.requests()[2].url.host(), u"nvidia.test"_s);
}

TEST_F(TextChainTest, TheCustomModelGoesFirstAndItsFailureIsDropped) {
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsBaseURLOverride = u"https://mine.test"_s;
    service.configuration.pollinationsVisionModelOverride = u"my-model"_s;
    http.answer(200, chatReply(u"mine"_s));
    EXPECT_EQ(generate(jpeg), u"mine"_s);
    EXPECT_EQ(http.requests()[0].url, QUrl(u"https://mine.test/v1/chat/completions"_s));
    EXPECT_EQ(header(http.requests()[0], "Authorization"), "") << "the built-in key never goes to a custom gateway";
    EXPECT_TRUE(http.requests()[0].body.contains("image_url"));

    service.configuration.pollinationsApiKey = u"own"_s;
    http.answer(503, "off");
    http.answer(200, chatReply(u"chain"_s));
    EXPECT_EQ(generate(), u"chain"_s);
    EXPECT_EQ(header(http.requests()[1], "Authorization"), "Bearer own");
    EXPECT_TRUE(logged(u"Custom Pollinations model failed: API error (503): off"_s));

    service.configuration.pollinationsVisionModelOverride = QString();
    http.answer(200, chatReply(u"chain"_s));
    EXPECT_EQ(generate(), u"chain"_s);
    EXPECT_EQ(askedModels().last(), nemotron) << "an empty override skips the custom step";
}

TEST_F(TextChainTest, TheDeadlineCutsPollinationsAndGLMButNotNvidia) {
    service.configuration.textModels = {PollinationsModel::openai, PollinationsModel::glmVisionFlash};
    http.neverAnswer();
    http.neverAnswer();
    const auto start = loop.now();
    EXPECT_EQ(generateError(), u"Request timed out"_s);
    EXPECT_EQ(loop.now() - start, 60s) << "thirty seconds each";
    EXPECT_EQ(http.abandoned(), 2) << "past its deadline a request is ended on the wire";

    service.configuration.textModels = {PollinationsModel::nvidiaNemotron};
    http.answer({platform::HttpResponse{.status = 200, .body = chatReply(u"slow"_s)}, 45s});
    EXPECT_EQ(generate(), u"slow"_s);
}

TEST_F(TextChainTest, ACancellationEndsTheWalk) {
    http.neverAnswer();
    bool cancelled = false;
    async::TaskScope scope(loop);
    auto handle = scope.spawn([](PollinationsService& gateway, bool& flag) -> async::Task<void> {
        try {
            co_await generateText(gateway, {.system = u"S"_s, .user = u"U"_s, .maxTokens = 10});
        } catch (const async::CancellationError&) {
            flag = true;
        }
    }(service, cancelled));
    loop.advance(1s);
    handle.cancel();
    loop.advance(1s);
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(http.requests().size(), 1U) << "no other model is asked";
    EXPECT_EQ(http.abandoned(), 1);
}

TEST(Destinations, OnlyWhatLeavesTheUsersNetworkIsPublic) {
    for (const char* address : {"https://gen.pollinations.ai", "http://8.8.8.8:80", "http://172.32.0.1",
                                "http://11.0.0.1", "http://[2001:db8::1]/", "http://[::ffff:8.8.8.8]",
                                "http://localhost.example.com", "https://example.com./v1"})
        EXPECT_TRUE(isPublic(QUrl(QString::fromLatin1(address)))) << address;
    for (const char* address :
         {"http://localhost:11434/api", "http://127.8.9.1", "http://[::1]:1", "http://10.1.2.3", "http://172.31.255.1",
          "http://192.168.0.9", "http://169.254.1.1", "http://[fd00::7]", "http://[fe80::1]",
          "http://[::ffff:192.168.1.1]", "http://nas/", "http://box.local.", "http://box.home.arpa"})
        EXPECT_FALSE(isPublic(QUrl(QString::fromLatin1(address)))) << address;
}

TEST_F(TextChainTest, TheDestinationsAreThoseThatTheChainAsks) {
    const auto hosts = [this](RequestContents contents) {
        QStringList list;
        for (const auto& address : destinations(service.configuration, contents))
            list << address.host();
        return list;
    };
    const auto asked = [this](const std::optional<QByteArray>& image) {
        const auto before = http.requests().size();
        generateError(image);
        QStringList list;
        for (auto index = before; index < http.requests().size(); ++index)
            list << http.requests()[index].url.host();
        list.removeDuplicates();
        return list;
    };
    http.otherwise = [](const auto&) {
        return testing::FakeHttpSession::Reply{platform::HttpResponse{.status = 503, .body = "busy"}, {}};
    };
    EXPECT_EQ(hosts(RequestContents::Text), asked({}));
    service.configuration.ollamaEnabled = true;
    service.configuration.ollamaLocalEndpoint = QStringLiteral("http://llama.test/api/chat");
    service.configuration.ollamaMode = OllamaMode::local;
    service.configuration.ollamaLocalModel = QStringLiteral("llama");
    EXPECT_EQ(hosts(RequestContents::Picture), asked("picture"));
    EXPECT_EQ(hosts(RequestContents::Text), asked({}));
    service.configuration.ollamaEnabled = false;
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsBaseURLOverride = QStringLiteral("https://own.test");
    service.configuration.pollinationsVisionModelOverride = QStringLiteral("m");
    service.configuration.endpoints.builtInGLMKey.clear();
    auto told = hosts(RequestContents::Picture);
    told.removeDuplicates();
    EXPECT_EQ(told, asked("picture")) << "the user's own first";
}

}  // namespace tavrelon::generation
