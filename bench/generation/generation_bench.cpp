#include <benchmark/benchmark.h>

#include <random>

#include "generation/chat_glm.h"
#include "generation/chat_nvidia.h"
#include "generation/chat_ollama.h"
#include "generation/chat_pollinations.h"
#include "generation/image_intent.h"
#include "generation/prompt_template.h"

namespace tavrelon::bench {
namespace {

using namespace Qt::StringLiterals;
using namespace generation;

const QByteArray& picture() {
    static const QByteArray bytes = [] {
        std::mt19937 random(1);
        QByteArray noise(1'000'000, '\0');
        for (char& byte : noise)
            byte = static_cast<char>(random());
        return noise;
    }();
    return bytes;
}

ChatPrompt prompt() {
    return {.system = u"You are an assistant. "_s.repeated(60),
            .user = u"What is in this picture?"_s,
            .image = picture(),
            .maxTokens = 2000,
            .temperature = 0.7F};
}

template <typename Work>
void atThroughput(benchmark::State& state, Work work) {
    for (auto _ : state)
        benchmark::DoNotOptimize(work());
    state.SetBytesProcessed(state.iterations() * picture().size());
}

void plainBase64(benchmark::State& state) {
    atThroughput(state, [] { return picture().toBase64(); });
}
BENCHMARK(plainBase64)->Name("base64 of a 1 MB picture, alone");

void gatewayRequest(benchmark::State& state) {
    const chat_pollinations::Call call{.baseURL = u"https://gateway.test"_s,
                                       .key = u"key"_s,
                                       .model = u"openai"_s,
                                       .imageCapable = ImageCapability::Yes,
                                       .prompt = prompt()};
    atThroughput(state, [&call] { return chat_pollinations::buildRequest(call); });
}
BENCHMARK(gatewayRequest)->Name("request with a 1 MB picture, Pollinations");

void nvidiaRequest(benchmark::State& state) {
    const chat_nvidia::Call call{.url = u"https://nvidia.test/v1"_s, .key = u"key"_s, .prompt = prompt()};
    atThroughput(state, [&call] { return chat_nvidia::buildRequest(call); });
}
BENCHMARK(nvidiaRequest)->Name("request with a 1 MB picture, NVIDIA");

void glmRequest(benchmark::State& state) {
    const chat_glm::Call call{.baseURL = u"https://glm.test/v4"_s,
                              .key = u"key"_s,
                              .model = PollinationsModel::glmVision,
                              .prompt = prompt()};
    atThroughput(state, [&call] { return chat_glm::buildRequest(call); });
}
BENCHMARK(glmRequest)->Name("request with a 1 MB picture, GLM");

void ollamaRequest(benchmark::State& state) {
    const auto asked = prompt();
    const chat_ollama::Call call{.mode = OllamaMode::local,
                                 .url = u"http://localhost:11434/api/chat"_s,
                                 .model = u"llava"_s,
                                 .systemPrompt = asked.system,
                                 .userPrompt = asked.user,
                                 .images = asked.image ? std::vector{*asked.image} : std::vector<QByteArray>{}};
    atThroughput(state, [&call] { return chat_ollama::buildRequest(call); });
}
BENCHMARK(ollamaRequest)->Name("request with a 1 MB picture, Ollama");

void readReply(benchmark::State& state) {
    const auto text = u"A sentence of the answer, with 中文 and \"quotes\".\n"_s.repeated(1'850);
    const platform::HttpResponse response{
        .status = 200,
        .body = text::compactJson(
            {{"choices",
              text::Json::array({{{"message", {{"role", "assistant"}, {"content", text::toJson(text)}}}}})}})};
    for (auto _ : state)
        benchmark::DoNotOptimize(chat_pollinations::readResponse(response));
    state.counters["body"] = static_cast<double>(response.body.size());
}
BENCHMARK(readReply)->Name("reading a reply of 100 KB")->Unit(benchmark::kMicrosecond);

template <qsizetype length>
void imageIntent(benchmark::State& state) {
    // Nothing in it asks for a picture, so that every list is gone through.
    const auto text = u"please tell us when "_s.repeated(100).first(length);
    for (auto _ : state)
        benchmark::DoNotOptimize(isImageRequest(text));
}
BENCHMARK(imageIntent<20>)->Name("isImageRequest, 20 characters")->Unit(benchmark::kMicrosecond);
BENCHMARK(imageIntent<2000>)->Name("isImageRequest, 2 000 characters")->Unit(benchmark::kMicrosecond);

void flatten(benchmark::State& state) {
    const auto description = text::parseJson(R"({
"meta":{"aspect_ratio":"16:9","resolution":"4k","quality":"high","camera":"full frame","lens":"35 mm","style":"photo",
 "upload_feel":"casual"},
"scene":{"location":"a beach","specific_vibe":"late summer","environment":["dunes","grass"],"time":"evening",
 "atmosphere":"calm"},
"lighting":{"type":"natural","direction":"from behind","color_temperature":"warm","effect":["rim light","haze"]},
"camera_perspective":{"pov":"eye level","angle":"slightly low","distance":"medium","framing":"centred",
 "imperfections":["grain","soft corners"]},
"subject":{"gender":"female","age":"30","ethnicity":"any","body":{"type":"slim","posture":"upright","legs":"long"},
 "skin":{"tone":"tanned","texture":"natural","details":["freckles"]},
 "hair":{"color":"red","length":"long","style":"loose","state":"windy","behavior":"flowing"},
 "face":{"expression":"smile","eyes":"green","lips":"natural","makeup":"none","vibe":"friendly"},
 "pose":{"stance":"walking","feet":"bare","upper_body":"turned","arms":{"one_hand":"waves","other_hand":"holds shoes"}},
 "outfit":{"top":{"type":"shirt","color":"white","fit":"loose","detail":"linen"},
  "bottom":{"type":"trousers","color":"blue","fit":"rolled up","detail":"denim"}}},
"environmental_details":{"sand":"wet","water":"small waves","background_people":"few","air":"clear"},
"aesthetic_intent":["nostalgia","ease"]})");
    for (auto _ : state)
        benchmark::DoNotOptimize(flattenPromptTemplate(description));
}
BENCHMARK(flatten)->Name("flattenPromptTemplate, a full template")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrelon::bench
