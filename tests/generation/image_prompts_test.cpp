#include "generation/gateway_fixture.h"
#include "generation/image_intent.h"
#include "generation/image_prompt_cleaning.h"
#include "generation/image_prompt_enhancement.h"
#include "generation/prompt_template.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;
using tavrelon::testing::runTask;

TEST(ImageIntentTest, TellsWhoWantsAPicture) {
    for (const auto& text : {u"写一个关于绘本的故事"_s, u"画"_s, u"create a logo"_s, u"huatu yizhi mao"_s, u"Huawei"_s,
                             u"zuo tupian"_s, u"zuo fan"_s, u"DRAW it"_s, u"a Sketch"_s, u"make a start"_s,
                             u"生成一张图片"_s, u"做 wallpaper"_s, u"design 头像"_s, u"shengcheng,mao"_s})
        EXPECT_TRUE(isImageRequest(text)) << text.toStdString();
    for (const auto& text : {u"make a plan"_s, u"image"_s, u"zuo"_s, u"write a reply"_s, u"图片"_s, u"生成报告"_s,
                             u"azuo tupian"_s, u""_s, u"!?"_s})
        EXPECT_FALSE(isImageRequest(text)) << text.toStdString();
    EXPECT_EQ(wordTokens(u"A-b  你好,ÉÀ2!"_s), (QStringList{u"a"_s, u"b"_s, u"你好"_s, u"éà2"_s}));
    EXPECT_EQ(detectPromptLanguage(u"一只cat"_s), u"mixed"_s);
    EXPECT_EQ(detectPromptLanguage(u"123"_s), std::nullopt);
}

TEST(ImagePromptTest, CleaningRemovesWhatOnlyAsks) {
    EXPECT_EQ(cleanImagePrompt(u" 请帮我生成一张 戴帽子的猫 "_s), u"戴帽子的猫"_s);
    EXPECT_EQ(cleanImagePrompt(u"帮我帮我画猫"_s), u"猫"_s) << "a whole pass goes on with the next prefix";
    EXPECT_EQ(cleanImagePrompt(u"画猫"_s), u"画猫"_s);
    EXPECT_EQ(cleanImagePrompt(u"Please  draw a picture of a Red cat, sitting!"_s), u"a red cat sitting"_s);
    EXPECT_EQ(cleanImagePrompt(u"Generate an image"_s), u"Generate an image"_s) << "never empty";
    EXPECT_EQ(cleanImagePrompt(u"huatu Yizhi mao"_s), u"tu yizhi mao"_s);
    EXPECT_EQ(cleanImagePrompt(u"hua mao design"_s), u"mao"_s);
    EXPECT_EQ(cleanImagePrompt(u"draw 一只  猫"_s), u"一只 猫"_s);
    EXPECT_EQ(cleanImagePrompt(u" \n"_s), u""_s);
}

TEST(ImagePromptTest, TheDemandForDecencyIsAddedOnce) {
    EXPECT_EQ(sanitizeImagePrompt(u" a cat "_s), u"a cat, safe, no nudity, no sexual content"_s);
    EXPECT_EQ(sanitizeImagePrompt(u"a painting, no Nudity "_s), u"a painting, no Nudity"_s);
    EXPECT_EQ(sanitizeImagePrompt(u" "_s), u""_s);
}

TEST(PromptTemplateTest, FlattensToPhrases) {
    const auto flat = [](const QByteArray& json) { return flattenPromptTemplate(text::parseJson(json)); };
    EXPECT_EQ(flat(R"({"meta":{"aspect_ratio":"16:9"}})"), u"aspect ratio 16:9"_s);
    EXPECT_EQ(flat(R"({"extra_note":"late","subject":{"age":30,"body":{"type":" slim "},"tall":true,"x":null},)"
                   R"("scene":{"environment":["sea"," ","sand"]},"ratio":1.0,"other":["a"],"meta":"calm"})"),
              u"calm, sea, sand, age 30, type slim, extra note late, ratio 1, a"_s);
    EXPECT_EQ(flat(R"({"scene":{"a":""},"x":true,"y":null,"z":[]})"), std::nullopt);
    EXPECT_EQ(flat("{\"scene\":" + QByteArray(100'000, '[') + QByteArray(100'000, ']') + "}"), std::nullopt);
    EXPECT_FALSE(isStructuredTemplate(text::parseJson(R"({"subject":{"age":30},"note":1})")));
    EXPECT_TRUE(isStructuredTemplate(text::parseJson(R"({"subject":1,"meta":2})")));
}

class PromptEnhancementTest : public tavrelon::testing::GatewayFixture {
 public:
    QString enhance(const QString& text, PromptSafety safety = PromptSafety::Demanded) {
        return runTask(loop, enhanceImagePrompt(service, text, safety));
    }
};

TEST_F(PromptEnhancementTest, AStructuredTemplateBecomesPhrases) {
    http.answer(
        200,
        chatReply(u"Here:\n```json\n{\"subject\": {\"pose\": \"sitting\"}, \"meta\": {\"style\": \"oil\"}}\n```"_s));
    EXPECT_EQ(enhance(u" a cat "_s), u"style oil, pose sitting"_s);
    const auto system = text::stringFrom(body(0)["messages"][0]["content"]);
    EXPECT_TRUE(system.startsWith(u"/no_think\nYou are an image prompt architect."_s));
    EXPECT_TRUE(system.endsWith(
        u"\"aesthetic_intent\": [\"<...>\"]\n}\n- Do not include nudity, sexual content, or NSFW elements."_s));
    EXPECT_EQ(text::stringFrom(body(0)["messages"][1]["content"]), u"a cat"_s);
    EXPECT_EQ(body(0)["max_tokens"], 800);
    EXPECT_TRUE(http.requests()[0].body.contains(R"("temperature":0.6,)"));
}

TEST_F(PromptEnhancementTest, WithoutATemplateAShortPromptIsAskedForAndThenTheTextItself) {
    http.answer(200, chatReply(u"no idea"_s));
    http.answer(500, "down");
    http.answer(200, chatReply(u" "_s));
    http.answer(200, chatReply(u" A fluffy cat \n"_s));
    EXPECT_EQ(enhance(u"猫"_s, PromptSafety::NotDemanded), u"A fluffy cat"_s);
    EXPECT_EQ(askedModels(), (QStringList{u"nvidia/nemotron-nano-12b-v2-vl"_s, u"openai"_s,
                                          u"nvidia/nemotron-nano-12b-v2-vl"_s, u"openai"_s}));
    EXPECT_TRUE(body(1).contains("response_format"));
    EXPECT_FALSE(body(3).contains("response_format"));
    EXPECT_TRUE(text::stringFrom(body(3)["messages"][0]["content"]).endsWith(u"warm colors, detailed fur texture"_s));
    EXPECT_EQ(body(3)["max_tokens"], 200);

    for (int i = 0; i < 4; ++i)
        http.answer(500, "down");
    EXPECT_EQ(enhance(u" 猫 "_s), u"猫"_s);
    EXPECT_TRUE(text::stringFrom(body(6)["messages"][0]["content"]).endsWith(u"\n6. 禁止NSFW/裸体/色情内容"_s));
    EXPECT_EQ(enhance(u" "_s), u" "_s);
}

}  // namespace tavrelon::generation
