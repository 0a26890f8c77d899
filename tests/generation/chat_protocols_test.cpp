#include <gtest/gtest.h>

#include "generation/chat_glm.h"
#include "generation/chat_nvidia.h"
#include "generation/chat_ollama.h"
#include "generation/chat_pollinations.h"
#include "generation/chat_wire.h"
#include "generation/pollinations_error.h"
#include "support/qt_gtest.h"
#include "text/json.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

const ChatPrompt plain{.system = u"Sys"_s, .user = u"Hi"_s, .image = {}, .maxTokens = 2000, .temperature = 0.7F};
const ChatPrompt pictured{
    .system = u"Sys"_s, .user = u"Hi"_s, .image = QByteArray("\xff\xd8"), .maxTokens = 2000, .temperature = 0.7F};

platform::HttpResponse answer(const QByteArray& body, int status = 200) {
    return {.status = status, .body = body};
}

/// What reading gives, or the description of its error.
template <typename Read>
QString outcome(Read read, const platform::HttpResponse& response) {
    try {
        return read(response);
    } catch (const text::LocalizedError& error) {
        return "! "_L1 + error.localizedDescription();
    }
}

template <typename Build>
QString refusal(Build build) {
    try {
        build();
    } catch (const PollinationsError& error) {
        return error.localizedDescription();
    }
    return u"(no error)"_s;
}

}  // namespace

TEST(ChatKeys, GoOutOnlyWholeAndUnreadByOthers) {
    const auto authorized = [](const char* address, const QString& key) {
        platform::HttpRequest request{.url = QUrl(QLatin1StringView(address))};
        try {
            chat_wire::authorize(request, key);
        } catch (const KeyRefused& refused) {
            return refused.localizedDescription();
        }
        return request.headers.empty() ? u"none"_s : QString::fromUtf8(request.headers[0].second);
    };
    for (const auto* open : {"https://gw.example/v1", "http://localhost:1/x", "http://127.9.0.1", "http://[::1]:8080"})
        EXPECT_EQ(authorized(open, u" k\r\n"_s), u"Bearer k"_s) << open;
    for (const auto* readable : {"http://gw.example", "http://localhost.example", "http://127.0.0.1.example",
                                 "http://127.evil.example.com", "http://192.168.0.2:11434"})
        EXPECT_TRUE(authorized(readable, u"k"_s).contains("without encryption"_L1)) << readable;
    EXPECT_EQ(authorized("http://gw.example", u" \n"_s), u"none"_s);
    for (const auto& broken :
         {u"k\r\nX-Injected: 1"_s, u"k\nk"_s, u"a\tb"_s, u"a\u0085b"_s, u"a\u2028b"_s, u"a"_s + QChar(0) + u'b'})
        EXPECT_TRUE(authorized("https://gw.example", broken).contains("control character"_L1)) << broken.toStdString();
}

TEST(ChatPollinations, BuildsItsRequests) {
    chat_pollinations::Call call{.baseURL = u"https://gw.test/base"_s,
                                 .key = u"k"_s,
                                 .model = u"openai"_s,
                                 .imageCapable = ImageCapability::Yes,
                                 .prompt = plain};
    const auto request = chat_pollinations::buildRequest(call);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, QUrl(u"https://gw.test/base/v1/chat/completions"_s));
    EXPECT_EQ(request.headers,
              (platform::HttpHeaders{{"Content-Type", "application/json"}, {"Authorization", "Bearer k"}}));
    EXPECT_EQ(request.requestTimeout, std::chrono::seconds(60));
    EXPECT_EQ(request.body,
              R"({"model":"openai","messages":[{"role":"system","content":"Sys"},{"role":"user","content":"Hi"}],)"
              R"("max_tokens":2000,"temperature":0.7})");

    call.key = QString();
    call.jsonMode = JsonMode::On;
    call.prompt = pictured;
    call.prompt.system.clear();
    const auto second = chat_pollinations::buildRequest(call);
    EXPECT_EQ(second.headers, (platform::HttpHeaders{{"Content-Type", "application/json"}}));
    EXPECT_EQ(second.body,
              R"({"model":"openai","messages":[{"role":"system","content":""},{"role":"user","content":)"
              R"([{"type":"text","text":"Hi"},{"type":"image_url","image_url":{"url":"data:image/jpeg;base64,/9g=",)"
              R"("detail":"auto"}}]}],"max_tokens":2000,"temperature":0.7,"response_format":{"type":"json_object"}})");

    call.imageCapable = ImageCapability::No;
    EXPECT_TRUE(chat_pollinations::buildRequest(call).body.contains(R"("content":"Hi")")) << "the image is dropped";
    call.baseURL = u"https://gw .test"_s;
    EXPECT_EQ(refusal([&] { chat_pollinations::buildRequest(call); }), u"Invalid URL"_s);
}

TEST(ChatPollinations, ReadsItsAnswers) {
    const auto read = [](const QByteArray& body, int status = 200) {
        return outcome(chat_pollinations::readResponse, answer(body, status));
    };
    EXPECT_EQ(read(R"({"choices":[{"message":{"content":" a\n"}},{"message":{"content":"b"}}]})"), u" a\n"_s);
    EXPECT_EQ(read(R"({"choices":[{"message":{"content":""}}]})"), u""_s);
    EXPECT_EQ(read("slow down", 429), u"! API error (429): slow down"_s);
    EXPECT_EQ(read(R"({"choices":[{"message":{"content":"a"}}]})", 201),
              u"! API error (201): {\"choices\":[{\"message\":{\"content\":\"a\"}}]}"_s);
    EXPECT_EQ(read("\xff\xfe", 500), u"! API error (500): Unknown error"_s);
    const auto malformed = u"! Parse error: Invalid response format"_s;
    for (const char* body :
         {"[]", "{}", R"({"choices":[]})", R"({"choices":{}})", R"({"choices":null})", R"({"choices":["a"]})",
          R"({"choices":[{"message":{"content":"a"}},1]})", R"({"choices":[{"message":"a"}]})",
          R"({"choices":[{"message":{}}]})", R"({"choices":[{"message":{"content":null}}]})",
          R"({"choices":[{"message":{"content":[{"type":"text","text":"a"}]}}]})"})
        EXPECT_EQ(read(body), malformed) << body;
}

TEST(ChatDocuments, WhatIsNoDocumentIsRefusedInWordsAndCostsNoStack) {
    const QByteArray brackets(100'000, '[');
    const QByteArray good = R"({"choices":[{"message":{"content":"fine"}}]})";
    const auto notJson = u"! The answer is not valid JSON."_s;
    const auto malformed = u"! Parse error: Invalid response format"_s;
    const std::pair<QByteArray, QString> rows[] = {
        {"<html>Welcome to the hotel's network</html>", notJson},
        {"", notJson},
        {good + "}", notJson},
        {"\xef\xbb\xbf" + good, u"fine"_s},
        {QByteArray("\xff\xfe{\0}\0", 6), notJson},
        {QByteArray(good).replace("fine", "\xff\xfe"), notJson},
        {QByteArray(good).replace("fine", "\\ud800"), notJson},
        {brackets, notJson},
        {brackets + QByteArray(100'000, ']'), malformed},
        {QByteArray("{\"a\":").repeated(100'000) + "1" + QByteArray(100'000, '}'), malformed},
        {"1e999999", notJson},
        {"[" + QByteArray("1,").repeated(1'000'001) + "1]", u"! The document is too large."_s},
    };
    for (const auto& [body, seen] : rows)
        EXPECT_EQ(outcome(chat_pollinations::readResponse, answer(body)), seen) << body.left(40).toStdString();
}

TEST(ChatPictures, StandWhereTheDocumentSaysWhateverTheTextsHold) {
    chat_wire::Pictures pictures;
    const auto large = QByteArray("\xff\xd8\x00", 3).repeated(20'000) + "\x01";  // longer than one piece
    const auto first = pictures.dataUrl("\xff\xd8");
    const auto second = pictures.base64(large);
    const text::Json document = {{"text", R"({"bytes":[],"subtype":0})"}, {"list", text::Json::array({second, first})}};
    EXPECT_EQ(pictures.write(document), R"({"text":"{\"bytes\":[],\"subtype\":0}","list":[")" + large.toBase64() +
                                            R"(","data:image/jpeg;base64,/9g="]})");
}

TEST(ChatGLM, BuildsItsRequests) {
    chat_glm::Call call{.baseURL = u"https://glm.test/v4"_s,
                        .key = u"k"_s,
                        .model = PollinationsModel::glmTextFlash,
                        .prompt = pictured,
                        .jsonMode = JsonMode::On};
    const auto request = chat_glm::buildRequest(call);
    EXPECT_EQ(request.url, QUrl(u"https://glm.test/v4/chat/completions"_s));
    EXPECT_EQ(request.body,
              R"({"model":"glm-4-flash-250414","messages":[{"role":"system","content":"Sys"},)"
              R"({"role":"user","content":"Hi"}],"stream":false,"temperature":0.7,"top_p":0.95,"do_sample":true,)"
              R"("max_tokens":2000,"tool_stream":false,"response_format":{"type":"json_object"},)"
              R"("thinking":{"type":"enabled","clear_thinking":true}})");

    call.model = PollinationsModel::glmVision;
    call.prompt.system.clear();
    const auto vision = chat_glm::buildRequest(call).body;
    EXPECT_TRUE(vision.contains(
        R"("messages":[{"role":"user","content":[{"type":"image_url","image_url":{"url":"data:image/jpeg;base64,/9g="}})"
        R"(,{"type":"text","text":"Hi"}]}])"))
        << vision.toStdString();
    EXPECT_TRUE(vision.contains(R"("response_format":{"type":"text"})"));

    call.model = PollinationsModel::glmVisionFlash;
    EXPECT_EQ(refusal([&] { chat_glm::buildRequest(call); }),
              u"GLM model glm-4v-flash does not support base64 image input"_s);
    call.key = QString();
    EXPECT_EQ(refusal([&] { chat_glm::buildRequest(call); }), u"API error (401): GLM API key not configured"_s);
}

TEST(ChatGLM, ReadsContentTolerantly) {
    const auto read = [](const QByteArray& content) {
        return outcome(chat_glm::readResponse, answer(R"({"choices":[{"message":{"content":)" + content + "}}]}"));
    };
    EXPECT_EQ(read(R"("a")"), u"a"_s);
    EXPECT_EQ(read(R"("")"), u""_s);
    EXPECT_EQ(read(R"([{"type":"text","text":"a"},{"type":"text","text":"b"}])"), u"ab"_s);
    EXPECT_EQ(read(R"([{"content":"a"},{"text":1,"content":"b"},{"x":1},"c",3,{"text":"d","content":"e"}])"), u"abd"_s);
    EXPECT_EQ(read(R"([{"text":""}])"), u""_s);
    for (const char* none : {"[]", "null", "1", R"(["a"])", R"([{"x":"a"}])", R"({"text":"a"})"})
        EXPECT_EQ(read(none), u"! Parse error: Invalid GLM response format"_s) << none;
    EXPECT_EQ(outcome(chat_glm::readResponse, answer(R"({"error":{"code":"1210"}})", 400)),
              u"! API error (400): {\"error\":{\"code\":\"1210\"}}"_s);
}

TEST(ChatNvidia, BuildsItsRequests) {
    chat_nvidia::Call call{.url = u"https://nvidia.test/v1/chat/completions"_s, .key = u"k"_s, .prompt = pictured};
    const auto request = chat_nvidia::buildRequest(call);
    EXPECT_EQ(request.headers, (platform::HttpHeaders{{"Content-Type", "application/json"},
                                                      {"Authorization", "Bearer k"},
                                                      {"Accept", "application/json"}}));
    EXPECT_EQ(request.body,
              R"({"model":"nvidia/nemotron-nano-12b-v2-vl","messages":[{"role":"system","content":"/no_think\nSys"},)"
              R"({"role":"user","content":[{"type":"text","text":"Hi"},)"
              R"({"type":"image_url","image_url":{"url":"data:image/jpeg;base64,/9g="}}]}],)"
              R"("stream":false,"temperature":0.7,"top_p":1,"max_tokens":2000})");

    call.images = std::vector<QByteArray>{"a", "b"};
    call.prompt.user = u" \n"_s;
    call.prompt.maxTokens = 0;
    const auto frames = chat_nvidia::buildRequest(call).body;
    EXPECT_TRUE(frames.contains(R"({"role":"user","content":[{"type":"text","text":"Describe the visual content."},)"
                                R"({"type":"image_url","image_url":{"url":"data:image/jpeg;base64,YQ=="}},)"
                                R"({"type":"image_url","image_url":{"url":"data:image/jpeg;base64,Yg=="}}]})"));
    EXPECT_FALSE(frames.contains("max_tokens"));

    call.images = std::vector<QByteArray>{};
    EXPECT_TRUE(chat_nvidia::buildRequest(call).body.contains(R"("content":"Describe the visual content.")"));
    call.key.reset();
    EXPECT_EQ(refusal([&] { chat_nvidia::buildRequest(call); }), u"API error (401): NVIDIA API key not configured"_s);
    EXPECT_EQ(outcome(chat_nvidia::readResponse, answer("{}")), u"! Parse error: Invalid NVIDIA response format"_s);
}

TEST(ChatNvidia, TheThinkDirectiveLeadsThePrompt) {
    using chat_nvidia::applyThinkDirective;
    const auto asConfigured = [](const QString& prompt, bool think) {
        return applyThinkDirective(prompt, Thinking::AsConfigured, think);
    };
    EXPECT_EQ(asConfigured(u"Be brief"_s, false), u"/no_think\nBe brief"_s);
    EXPECT_EQ(asConfigured(u" Be brief\n"_s, true), u"/think\nBe brief"_s);
    EXPECT_EQ(asConfigured(u" "_s, false), u"/no_think"_s);
    EXPECT_EQ(asConfigured(u" /think\nBe brief "_s, false), u"/think\nBe brief"_s);
    EXPECT_EQ(asConfigured(u"/No_Think x"_s, true), u"/No_Think x"_s);
    EXPECT_EQ(asConfigured(u"/thinking hard"_s, false), u"/thinking hard"_s);

    const auto forced = [](const QString& prompt) { return applyThinkDirective(prompt, Thinking::ForcedOff, true); };
    EXPECT_EQ(forced(u"/think\nBe brief"_s), u"/no_think\nBe brief"_s);
    EXPECT_EQ(forced(u"/NO_THINK  Be brief"_s), u"/no_think\nBe brief"_s);
    EXPECT_EQ(forced(u"/thinking"_s), u"/no_think\ning"_s);
    EXPECT_EQ(forced(u"Be brief"_s), u"/no_think\nBe brief"_s);
    EXPECT_EQ(forced(u"/think "_s), u"/no_think"_s);
}

TEST(ChatOllama, ChecksItsConfigurationAndBuildsItsRequests) {
    chat_ollama::Call call{.mode = OllamaMode::cloud,
                           .url = u"http://host:11434"_s,
                           .systemPrompt = u""_s,
                           .userPrompt = u"Hi"_s,
                           .images = {"\xff\xd8", "\xff"}};
    const auto refused = [&] { return refusal([&] { chat_ollama::buildRequest(call); }); };
    EXPECT_EQ(refused(), u"Ollama cloud model is required"_s);
    call.model = u"llava"_s;
    EXPECT_EQ(refused(), u"Ollama cloud API key is required"_s);
    call.mode = OllamaMode::local;
    const auto request = chat_ollama::buildRequest(call);
    EXPECT_EQ(request.url, QUrl(u"http://host:11434"_s)) << "an endpoint is used as it was typed";
    EXPECT_EQ(request.headers, (platform::HttpHeaders{{"Content-Type", "application/json"}}));
    EXPECT_EQ(
        request.body,
        R"({"model":"llava","messages":[{"role":"user","content":"Hi","images":["/9g=","/w=="]}],"stream":false})");
    call.url = u"http://[bad"_s;
    EXPECT_EQ(refused(), u"Invalid URL"_s);
    call.model = u""_s;
    EXPECT_EQ(refused(), u"Ollama local model is required"_s);
}

TEST(ChatOllama, ReadsItsAnswers) {
    const auto read = [](const QByteArray& body) { return outcome(chat_ollama::readResponse, answer(body)); };
    EXPECT_EQ(read(R"({"message":{"content":"a"},"response":"b","error":"c"})"), u"a"_s);
    EXPECT_EQ(read(R"({"message":{"content":1},"response":"b","error":"c"})"), u"b"_s);
    EXPECT_EQ(read(R"({"error":"model not found"})"), u"! API error (200): model not found"_s);
    for (const char* body : {"{}", "[]", R"({"message":"a"})", R"({"error":{}})"})
        EXPECT_EQ(read(body), u"! Parse error: Invalid Ollama response format"_s) << body;
}

TEST(ChatOllama, ReadsModelLists) {
    const auto read = [](const QByteArray& body) {
        return outcome([](const auto& response) { return chat_ollama::readModelList(response).join(u'|'); },
                       answer(body));
    };
    EXPECT_EQ(read(R"({"models":[{"name":" b "},{"name":"a"},{"name":"b"},{"name":" "},{"x":1}]})"), u"a|b"_s);
    EXPECT_EQ(read(R"({"models":["c"],"tags":[{"name":"a"}]})"), u"a"_s);
    EXPECT_EQ(read(R"({"models":["c","b"]})"), u"b|c"_s);
    for (const char* none : {"{}", R"({"models":[]})", R"({"models":[1]})"})
        EXPECT_EQ(read(none), u"! Parse error: No Ollama models found"_s) << none;
    EXPECT_EQ(read("[]"), u"! Parse error: Invalid Ollama model list response"_s);
}

}  // namespace tavrelon::generation
