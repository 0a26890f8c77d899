#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scenes/decision_object.h"
#include "support/qt_gtest.h"

namespace tavrelon::scenes {

namespace {

constexpr const char* storedDecision =
    R"({"id":"0A1B2C3D-0000-4000-8000-00000000ABCD","sceneID":"general_text","sceneConfidence":0.6,"intent":"reply",)"
    R"("intentConfidence":0.7,"needsScreenshot":true,"outputType":"richPaste","style":{},)"
    R"("replacementStrategy":{"method":"deleteChars"},"safety":{"containsSensitive":false,"shareAllowed":true},)"
    R"("result":{"text":{"_0":"你好"}}})";

text::Json decoded(const char* json) {
    return text::parseJson(json);
}

}  // namespace

TEST(DecisionObject, KeepsItsStoredForm) {
    const auto decision = decisionObjectFrom(decoded(storedDecision));
    EXPECT_EQ(text::compactJson(toJson(decision)), storedDecision);
    EXPECT_EQ(decision.sceneConfidence, 0.6F);
    EXPECT_EQ(decision.outputType, OutputType::richPaste);
    EXPECT_EQ(decision.templateID, std::nullopt);

    auto full = decision;
    full.templateID = QStringLiteral("t");
    full.style = {.tone = QStringLiteral("a"), .length = QStringLiteral("b"), .language = QStringLiteral("d")};
    full.replacementStrategy = {ReplacementStrategy::Method::replaceSelection, 7};
    full.result = ImageSpec{.prompt = QStringLiteral("cat"), .size = ImageSize::wide, .style = QStringLiteral("oil")};
    full.fallback = QStringLiteral("f");
    const auto json = toJson(full);
    EXPECT_EQ(decisionObjectFrom(json), full);
    EXPECT_EQ(text::compactJson(json["result"]),
              R"({"image":{"_0":{"prompt":"cat","size":"1792x1024","style":"oil"}}})");
    EXPECT_EQ(text::compactJson(json["style"]), R"({"tone":"a","length":"b","language":"d"})");
}

TEST(DecisionObject, NothingRequiredIsInvented) {
    for (const char* key : {"id", "sceneID", "sceneConfidence", "intent", "intentConfidence", "needsScreenshot",
                            "outputType", "style", "replacementStrategy", "safety", "result"}) {
        auto json = decoded(storedDecision);
        json.erase(key);
        EXPECT_THROW(decisionObjectFrom(json), text::JsonError) << key;
    }
    auto json = decoded(storedDecision);
    json["sceneConfidence"] = 1e300;
    EXPECT_THROW(decisionObjectFrom(json), text::JsonError);
    json = decoded(storedDecision);
    json["replacementStrategy"]["method"] = "DeleteChars";
    EXPECT_THROW(decisionObjectFrom(json), text::JsonError);
    json = decoded(storedDecision);
    json["safety"].erase("shareAllowed");
    EXPECT_THROW(decisionObjectFrom(json), text::JsonError);
}

TEST(ResultContent, HoldsExactlyOneKnownAlternative) {
    const auto refusal = [](const char* json) {
        try {
            resultContentFrom(decoded(json));
        } catch (const text::JsonError& error) {
            return error.localizedDescription();
        }
        return QStringLiteral("accepted");
    };
    const auto wrongCount = QStringLiteral("Invalid number of keys found, expected one.");
    EXPECT_EQ(refusal("{}"), wrongCount);
    EXPECT_EQ(refusal(R"({"text":{"_0":"a"},"image":null})"), wrongCount);
    EXPECT_EQ(refusal(R"({"other":{"_0":"a"}})"), wrongCount);
    EXPECT_THAT(refusal(R"({"text":{}})").toStdString(), ::testing::HasSubstr("_0"));
    for (const char* bad : {"[]", R"({"text":"a"})", R"({"structured":{"_0":{"a":1}}})",
                            R"({"structured":{"_0":["a"]}})", R"({"image":{"_0":{"prompt":"a","size":"7x7"}}})"})
        EXPECT_THROW(resultContentFrom(decoded(bad)), text::JsonError) << bad;

    EXPECT_EQ(resultContentFrom(decoded(R"({"other":1,"text":{"_0":"a","_1":"b"}})")),
              ResultContent(QStringLiteral("a")));
    const ResultContent structured = StructuredContent{{QStringLiteral("k"), QStringLiteral("v")}};
    EXPECT_EQ(text::compactJson(toJson(structured)), R"({"structured":{"_0":{"k":"v"}}})");
    EXPECT_EQ(resultContentFrom(toJson(structured)), structured);
    EXPECT_EQ(text::compactJson(toJson(ResultContent(StructuredContent{}))), R"({"structured":{"_0":{}}})");
}

TEST(ResolvedStyle, NamesTheLengthByTheUpperBound) {
    EXPECT_EQ(resolvedStyle(std::nullopt), StyleParameters{});
    OutputContract contract{.tone = QStringLiteral("casual"), .format = QStringLiteral("code")};
    const auto length = [&](qint64 upper) {
        contract.lengthRange = LengthRange{10, upper};
        return resolvedStyle(contract).length.value_or(QString());
    };
    EXPECT_EQ(resolvedStyle(contract), (StyleParameters{.tone = contract.tone, .format = contract.format}));
    EXPECT_EQ(length(80), QStringLiteral("short"));
    EXPECT_EQ(length(81), QStringLiteral("medium"));
    EXPECT_EQ(length(200), QStringLiteral("medium"));
    EXPECT_EQ(length(201), QStringLiteral("long"));
}

}  // namespace tavrelon::scenes
