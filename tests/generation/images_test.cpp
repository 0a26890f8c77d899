#include "generation/ai_service.h"
#include "generation/gateway_fixture.h"
#include "generation/image_wire.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using tavrelon::testing::runTask;

namespace {

QString readGLM(const QByteArray& body, int status = 200) {
    try {
        const auto found = image_wire::readGLMAnswer({.status = status, .body = body});
        if (const auto* url = std::get_if<QUrl>(&found))
            return "url "_L1 + url->toString();
        return "bytes "_L1 + QString::fromLatin1(std::get<QByteArray>(found).toHex());
    } catch (const text::LocalizedError& error) {
        return error.localizedDescription();
    }
}

}  // namespace

TEST(ImageWireTest, ThePromptBecomesThePath) {
    const auto url = image_wire::pollinationsUrl(u"https://gw.test"_s, u" a/b? c#d%e;é&f "_s, u"zimage"_s);
    EXPECT_EQ(url.toEncoded(),
              "https://gw.test/image/a/b%3F%20c%23d%25e%3B%C3%A9&f"
              "?model=zimage&width=1024&height=1024&nologo=true&enhance=false&quality=hd");
    EXPECT_THROW(image_wire::pollinationsUrl(u"https://gw.test"_s, u" "_s, u"zimage"_s), PollinationsError);
    EXPECT_THROW(image_wire::pollinationsUrl(u"https://gw.test"_s, QString(QChar(0xD800)), u"zimage"_s),
                 PollinationsError);
    EXPECT_THROW(image_wire::pollinationsUrl(u"https://g w.test"_s, u"a"_s, u"zimage"_s), PollinationsError);
}

TEST(ImageWireTest, GLMAnswersComeInManyShapes) {
    EXPECT_EQ(readGLM(R"({"data":[{"b64_json":" AAAA\n"},{"url":"https://x.test"}]})"), u"bytes 000000"_s);
    EXPECT_EQ(readGLM(R"({"data":{"url":" ","image":"data:image/png;base64,/9g="}})"), u"bytes ffd8"_s);
    EXPECT_EQ(readGLM(R"({"data":["data:image/png;base64,AAAA",1]})"), u"bytes 000000"_s);
    EXPECT_EQ(readGLM(R"({"data":[{"url":"https://a.test/12345678.png?x=1"}]})"),
              u"url https://a.test/12345678.png?x=1"_s);
    for (const char* path : {"a", "ab", "abc", "abcd"})  // one of four is whole groups of base64 letters
        EXPECT_EQ(readGLM(QByteArray(R"({"data":["https://cdn.test/)") + path + R"("]})"),
                  "url https://cdn.test/"_L1 + QLatin1StringView(path));
    EXPECT_EQ(readGLM(R"({"data":[{"base64":"AAA","image_url":"https://a.test/i"}]})"), u"url https://a.test/i"_s);
    EXPECT_EQ(readGLM(R"({"data":[{"url_list":["https://a.test/1","https://a.test/2"]}]})"), u"url https://a.test/1"_s);
    EXPECT_EQ(readGLM(R"({"data":[{"url":"AA=="}]})"), u"bytes 00"_s);
    for (const char* empty : {"{}", R"({"data":[]})", R"({"data":"x"})", R"({"data":[1,{"url":"x"}]})"})
        EXPECT_EQ(readGLM(empty), u"Parse error: No GLM image payload found"_s) << empty;
    for (const char* none : {R"({"data":[{}]})", R"({"data":[{"url_list":[]}]})", R"({"data":[{"url":"http://[x"}]})"})
        EXPECT_EQ(readGLM(none), u"Parse error: GLM image payload missing image data"_s) << none;
    const auto deep = R"({"data":[{"x":)" + QByteArray(200'000, '[') + QByteArray(200'000, ']') + "}]}";
    EXPECT_EQ(readGLM(deep), u"Parse error: GLM image payload missing image data"_s);
    EXPECT_EQ(readGLM("[]"), u"Parse error: Invalid GLM image response format"_s);
    EXPECT_EQ(readGLM("busy", 503), u"API error (503): busy"_s);
}

class ImagesTest : public tavrelon::testing::GatewayFixture {
 public:
    scenes::SceneRouter router;
    TavrelonAIService assistant{service, router, log};

    GenerationResult ask(const QString& input, bool enhance = false) {
        return runTask(loop, assistant.generate({.input = input, .enhanceImagePrompts = enhance}));
    }
    QByteArray download(const QString& url) {
        http.answer(200, "png", "image/png");
        runTask(loop, service.downloadImage(QUrl(url)));
        return header(http.requests().back(), "Authorization");
    }
};

TEST_F(ImagesTest, AnImageRequestGivesAnImage) {
    http.answer(200, "PNG", "image/png; charset=binary");
    const auto result = ask(u" Draw a red cat "_s);
    EXPECT_EQ(result.imageData, "PNG");
    EXPECT_FALSE(result.text);
    const auto& decision = result.decisionObject.value();
    EXPECT_EQ(decision.sceneID, u"image_generation"_s);
    EXPECT_EQ(decision.intent, u"image"_s);
    EXPECT_EQ(decision.intentConfidence, 0.7F);
    EXPECT_EQ(decision.outputType, scenes::OutputType::image);
    EXPECT_EQ(std::get<scenes::ImageSpec>(decision.result),
              (scenes::ImageSpec{.prompt = u"red cat"_s, .size = scenes::ImageSize::medium}));
    const auto& request = http.requests().at(0);
    EXPECT_EQ(request.url.path(), u"/image/red cat"_s);
    EXPECT_EQ(request.requestTimeout, 120s);
    EXPECT_EQ(header(request, "User-Agent"), "Tavrelon/1.0");
    EXPECT_EQ(header(request, "Authorization"), "Bearer sk_default");
}

TEST_F(ImagesTest, EnhancementDemandsDecency) {
    http.answer(200, chatReply(u"{\"meta\":{\"style\":\"oil\"},\"subject\":{\"x\":\"cat\"}}"_s));
    http.answer(200, "PNG", "image/png");
    const auto result = ask(u"draw a cat"_s, true);
    EXPECT_EQ(std::get<scenes::ImageSpec>(result.decisionObject->result).prompt,
              u"style oil, x cat, safe, no nudity, no sexual content"_s);
}

TEST_F(ImagesTest, AToolCallInAReplyIsDrawnAsItIs) {
    http.answer(200,
                chatReply(u"{\"action\": \"dalle.text2im\", \"action_input\": \"{\\\"prompt\\\": \\\"a cat\\\"}\"}"_s));
    http.answer(200, "PNG", "image/png");
    const auto result = ask(u"hello"_s);
    EXPECT_EQ(result.imageData, "PNG");
    EXPECT_EQ(result.decisionObject->intentConfidence, 0.6F);
    EXPECT_EQ(http.requests()[1].url.path(), u"/image/a cat"_s);
}

TEST_F(ImagesTest, GLMDrawsWhatPollinationsDoesNot) {
    for (const char* type : {"text/html", ""}) {
        http.answer(200, "<html>", type);
        http.answer(200, R"({"data":[{"b64_json":"AAAA"}]})");
        EXPECT_EQ(ask(u"draw a cat"_s).imageData, QByteArray(3, '\0'));
    }
    const auto& request = http.requests().at(1);
    EXPECT_EQ(request.url, QUrl(u"https://glm.test/v4/images/generations"_s));
    EXPECT_EQ(request.body, R"({"model":"cogview-3-flash","prompt":"cat","size":"1024x1024","quality":"hd"})");
    EXPECT_EQ(header(request, "Authorization"), "Bearer glm.key");

    http.fail(platform::HttpError::Code::TimedOut, u"The request timed out."_s);
    http.answer(200, R"({"data":[{"url":"https://cdn.test/cat.png"}]})");
    http.answer(200, "PNG", "image/png");
    EXPECT_EQ(ask(u"draw a cat"_s).imageData, "PNG") << "a time-out of the transport falls back too";
    EXPECT_EQ(header(http.requests().back(), "Authorization"), "");
}

TEST_F(ImagesTest, ADownloadTakesAKeyOnlyToItsOwnService) {
    for (const auto* own : {"https://GLM.test/a", "https://img.glm.test/a"})
        EXPECT_EQ(download(QString::fromLatin1(own)), "Bearer glm.key") << own;
    EXPECT_EQ(download(u"https://x.pollinations.test/a"_s), "Bearer sk_default");
    for (const auto* other :
         {"http://glm.test/a", "https://glm.test:444/a", "https://evilglm.test/a", "https://glm.test.evil.example/a",
          "https://test/a", "https://glm.test@evil.example/a", "https://bigmodel.evil.example/a",
          "https://pollinations.evil.example/a", "https://cdn.test/glm.test/pollinations.test"})
        EXPECT_EQ(download(QString::fromLatin1(other)), "") << other;
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsBaseURLOverride = u"https://Mine.test/base"_s;
    EXPECT_EQ(download(u"https://mine.test/a"_s), "") << "custom mode without a key of the user's";
    service.configuration.pollinationsApiKey = u"own"_s;
    EXPECT_EQ(download(u"https://mine.test/a"_s), "Bearer own");

    http.answer(200, "PNG", "");
    EXPECT_EQ(runTask(loop, service.downloadImage(QUrl(u"https://a.test"_s))), "PNG") << "no type is no objection here";
    http.answer(200, "<html>", "text/html");
    EXPECT_THROW(runTask(loop, service.downloadImage(QUrl(u"https://a.test"_s))), PollinationsError);
}

TEST_F(ImagesTest, CustomModeDrawsWithTheUsersModelAndGateway) {
    service.configuration.pollinationsImageModelOverride = u"mine"_s;
    http.answer(200, "PNG", "image/png");
    ask(u"draw a cat"_s);
    EXPECT_TRUE(http.requests()[0].url.query().startsWith(u"model=zimage&"_s)) << "not while custom mode is off";
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsBaseURLOverride = u"https://mine.test"_s;
    http.answer(200, "PNG", "image/png");
    ask(u"draw a cat"_s);
    EXPECT_EQ(http.requests()[1].url.host(), u"mine.test"_s);
    EXPECT_TRUE(http.requests()[1].url.query().startsWith(u"model=mine&"_s));
    EXPECT_EQ(header(http.requests()[1], "Authorization"), "");
}

class VideoFallbackTest : public tavrelon::testing::GatewayFixture {
 public:
    QString describeFrame(const std::exception_ptr& previous) {
        try {
            return runTask(
                loop,
                generateVideoFallback(
                    service, previous,
                    {.system = u"S"_s, .user = u"U"_s, .image = "\xff\xd8", .maxTokens = 2000, .temperature = 0.7F}));
        } catch (const text::LocalizedError& error) {
            return "! "_L1 + error.localizedDescription();
        }
    }
};

TEST_F(VideoFallbackTest, OneFrameGoesToTheOtherVisionModels) {
    const auto previous = std::make_exception_ptr(PollinationsError::apiError(500, u"frames"_s));
    http.answer(200, chatReply(u"a window"_s));
    EXPECT_EQ(describeFrame(previous), u"a window"_s);
    EXPECT_EQ(askedModels(), QStringList{u"openai"_s});
    EXPECT_TRUE(http.requests()[0].body.contains("data:image/jpeg;base64,/9g="));

    http.answer(429, "busy");
    EXPECT_EQ(describeFrame(previous), u"! API error (500): frames"_s) << "the first failure is the one told";
    http.answer(429, "busy");
    EXPECT_EQ(describeFrame(nullptr), u"! API error (429): busy"_s);
    service.configuration.visionModels = {PollinationsModel::nvidiaNemotron, PollinationsModel::glmVisionFlash};
    EXPECT_EQ(describeFrame(previous), u"! API error (500): frames"_s);
    EXPECT_EQ(http.requests().size(), 3U) << "no model was left to ask";
}

}  // namespace tavrelon::generation
