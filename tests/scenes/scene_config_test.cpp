#include "scenes/scene_config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/qt_gtest.h"

namespace tavrelon::scenes {

namespace {

OutputContract contractFrom(const char* json) {
    return outputContractFrom(text::parseJson(json));
}

}  // namespace

TEST(OutputContract, TheRangeIsCarriedByItsTwoEnds) {
    EXPECT_EQ(contractFrom("{}"), OutputContract{});
    EXPECT_EQ(text::compactJson(toJson(OutputContract{})), "{}");
    EXPECT_EQ(text::compactJson(toJson(contractFrom(R"({"lengthMin":10})"))), "{}");
    EXPECT_EQ(contractFrom(R"({"lengthMax":"not read"})").lengthRange, std::nullopt);
    EXPECT_EQ(contractFrom(R"({"lengthMin":7,"lengthMax":7})").lengthRange, (LengthRange{7, 7}));
    EXPECT_EQ(
        text::compactJson(toJson(contractFrom(
            R"({"lengthMax":9,"lengthMin":1,"format":"f","tone":"t","prohibitedTerms":[],"requiredFields":["a"]})"))),
        R"({"requiredFields":["a"],"prohibitedTerms":[],"tone":"t","format":"f","lengthMin":1,"lengthMax":9})");
}

TEST(SceneConfig, RequiresEveryKey) {
    auto scene = defaultScenes().at(1);
    scene.id = QUuid(QStringLiteral("0a1b2c3d-0000-4000-8000-00000000abcd"));
    const auto json = toJson(scene);
    EXPECT_EQ(
        QString::fromUtf8(text::compactJson(json)),
        QStringLiteral(R"({"id":"0A1B2C3D-0000-4000-8000-00000000ABCD","name":"邮件回复","isEnabled":true,)"
                       R"("priority":100,"appBundleIDs":["com.apple.mail"],"windowTitleKeywords":["Re:","回复:"],)"
                       R"("domainPatterns":[],"outputContract":{"requiredFields":["greeting","body","closing"],)"
                       R"("tone":"professional","format":"paragraph","lengthMin":50,"lengthMax":1000},)"
                       R"("allowScreenshot":true,"allowShare":false})"));
    for (const auto& [key, value] : json.items()) {
        auto lacking = json;
        lacking.erase(key);
        EXPECT_THROW(sceneConfigFrom(lacking), text::JsonError) << key;
        EXPECT_THROW(sceneListFrom(text::Json::array({json, lacking})), text::JsonError) << key;
    }
    const auto faultWith = [&json](const char* key, const text::Json& value) {
        auto wrong = json;
        wrong["outputContract"][key] = value;
        try {
            sceneListFrom(text::Json::array({json, wrong}));
            return QStringLiteral("none");
        } catch (const text::JsonError& error) {
            return error.localizedDescription();
        }
    };
    EXPECT_EQ(faultWith("lengthMax", 1), QStringLiteral("scene 2 (邮件回复): \"outputContract\": \"lengthMax\" (1) is "
                                                        "smaller than \"lengthMin\" (50)."));
    EXPECT_TRUE(faultWith("requiredFields", "greeting")
                    .startsWith(QStringLiteral("scene 2 (邮件回复): \"outputContract\": \"requiredFields\": ")));
    EXPECT_THROW(sceneListFrom(json), text::JsonError);
}

}  // namespace tavrelon::scenes
