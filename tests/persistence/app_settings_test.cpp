#include <gtest/gtest.h>

#include "persistence/taught.h"
#include "support/qt_gtest.h"

namespace tavrelon::persistence {

namespace {

/// The document that a new user's first save leaves behind, with both dates.
text::Json documentWithEveryKey() {
    auto json = text::parseJson(R"({
        "toggleHotkey": {"keyCode": 37, "modifiersRaw": 1703936},
        "voiceHotkey": {"keyCode": 0, "modifiersRaw": 786432},
        "voiceDictationHotkey": {"keyCode": 0, "modifiersRaw": 393216},
        "cancelHotkey": {"keyCode": 53, "modifiersRaw": 0},
        "autoReplyHotkey": {"keyCode": 0, "modifiersRaw": 1703936},
        "toggleAllHotkeysHotkey": {"keyCode": 40, "modifiersRaw": 1703936},
        "videoHotkey": {"keyCode": 5, "modifiersRaw": 1703936},
        "floatingInputHotkey": {"keyCode": 35, "modifiersRaw": 1703936},
        "hotkeysEnabled": true,
        "toggleHotkeyEnabled": true, "voiceHotkeyEnabled": true, "voiceDictationHotkeyEnabled": true,
        "voiceInputSilenceTimeoutSeconds": 2.0, "voiceDictationSilenceTimeoutSeconds": 2.0,
        "cancelHotkeyEnabled": true, "autoReplyHotkeyEnabled": true, "toggleAllHotkeysHotkeyEnabled": true,
        "videoHotkeyEnabled": true, "floatingInputHotkeyEnabled": true,
        "screenshotMode": "focusedWindow", "screenshotQuality": 0.7, "maxScreenshotWidth": 1920,
        "aiMaxTokens": 2000, "aiTemperature": 0.7, "aiTimeout": 30.0,
        "visionModelPreference": "speed", "enableCustomPollinations": false, "pollinationsBaseURL": "",
        "pollinationsImageModel": "zimage", "pollinationsVisionModel": "openai",
        "enableOllamaVision": false, "ollamaMode": "cloud", "ollamaCloudModel": "",
        "ollamaLocalModel": "genmini-3-flash-preview", "ollamaLocalEndpoint": "",
        "enableImagePromptEnhancement": true, "enableAI": true,
        "autoReset": true, "autoResetDelay": 2.0, "showStatusHUD": false,
        "adaptiveSystemPrompt": "", "adaptiveSystemPromptUpdatedAt": 1000.5,
        "cloneApiBaseURL": "", "cloneLanguageStyle": "", "cloneSystemPrompt": "",
        "cloneLanguageStyleUpdatedAt": -2000.25,
        "enableNvidiaLocal": false, "enableNvidiaThink": false,
        "enableHistory": true, "maxHistoryEntries": 20, "enableLocalLearning": true, "shareImprovements": false,
        "appLanguage": "en", "quickAskHotkeyEnabled": true,
        "adaptiveSystemPromptSource": "", "adaptiveSystemPromptProvider": "", "cloneSource": "", "cloneProvider": "",
        "keepClipboard": false, "fallBackToOtherServices": false, "picturesByRequest": true,
        "textOnlyModel": "", "hasAnswered": false, "speechLocale": ""})");
    json["pollinationsBaseURL"] = text::toJson(defaultPollinationsBaseURL());
    json["ollamaLocalEndpoint"] = text::toJson(defaultOllamaLocalEndpoint());
    json["cloneApiBaseURL"] = text::toJson(defaultCloneApiBaseURL());
    return json;
}

/// The document with one value put in place of another of the same type.
text::Json changed(text::Json json, const std::string& key) {
    auto& value = json[key];
    if (value.is_boolean())
        value = !value.get<bool>();
    else if (value.is_string())
        value = value.get<std::string>() + "x";
    else if (value.is_object())
        value["modifiersRaw"] = 99;
    else if (value.is_number_integer())
        value = value.get<int>() + 1;
    else
        value = value.get<double>() + 1;
    return json;
}

AppSettings settingsFrom(const text::Json& json) {
    return storedSettingsFrom(json).settings;
}

AppSettings decoded(const char* json) {
    return settingsFrom(text::parseJson(json));
}

}  // namespace

TEST(AppSettings, DefaultsAreWrittenInFixedOrderWithoutTheAbsentDates) {
    auto expected = documentWithEveryKey();
    ASSERT_EQ(expected.size(), 64U);
    expected.erase("adaptiveSystemPromptUpdatedAt");
    expected.erase("cloneLanguageStyleUpdatedAt");
    expected.erase("fallBackToOtherServices");
    EXPECT_EQ(text::compactJson(toJson(defaultSettings())), text::compactJson(expected));
}

TEST(AppSettings, EveryFieldHasAPlaceOfItsOwn) {
    const auto document = documentWithEveryKey();
    EXPECT_EQ(text::compactJson(toJson(settingsFrom(document))), text::compactJson(document));
    for (const auto& [key, value] : document.items()) {
        const auto other = changed(document, key);
        const auto settings = settingsFrom(other);
        EXPECT_NE(settings, settingsFrom(document)) << key;
        EXPECT_EQ(text::compactJson(toJson(settings)), text::compactJson(other)) << key;
    }
}

TEST(AppSettings, WhatIsMissingTakesItsDefault) {
    EXPECT_EQ(decoded("{}"), defaultSettings());
    const auto document = documentWithEveryKey();
    for (const auto& [key, value] : document.items()) {
        auto lacking = document;
        lacking.erase(key);
        auto null = document;
        null[key] = nullptr;
        EXPECT_NO_THROW(EXPECT_EQ(settingsFrom(lacking), settingsFrom(null))) << key;
    }
    const auto settings = decoded(R"({"future":{"a":[]},"enableAI":true,"enableAI":false,"screenshotQuality":1})");
    EXPECT_FALSE(settings.enableAI);
    EXPECT_EQ(settings.screenshotQuality, 1.0);
    EXPECT_EQ(settings.appLanguage, QStringLiteral("en"));
}

TEST(AppSettings, AValueOfAnotherTypeTakesItsOwnDefaultOnly) {
    const auto document = documentWithEveryKey();
    for (const auto& [key, value] : document.items()) {
        auto faulty = document, lacking = document;
        faulty[key] = text::Json::array();
        lacking.erase(key);
        const auto stored = storedSettingsFrom(faulty);
        EXPECT_EQ(stored.settings, settingsFrom(lacking)) << key;
        EXPECT_EQ(stored.faulty, QStringList{QString::fromStdString(key)});
    }
    EXPECT_THROW(storedSettingsFrom(text::Json::array()), text::JsonError);
}

TEST(AppSettings, TheOldSilenceTimeStandsInForBothNewOnes) {
    const auto silences = [](const char* json) {
        const auto settings = decoded(json);
        return std::pair(settings.voiceInputSilenceTimeoutSeconds, settings.voiceDictationSilenceTimeoutSeconds);
    };
    EXPECT_EQ(silences(R"({"voiceSilenceTimeoutSeconds":3.5})"), std::pair(3.5, 3.5));
    EXPECT_EQ(silences(R"({"voiceInputSilenceTimeoutSeconds":1,"voiceSilenceTimeoutSeconds":3.5})"),
              std::pair(1.0, 3.5));
    EXPECT_EQ(silences(R"({"voiceDictationSilenceTimeoutSeconds":1})"), std::pair(2.0, 1.0));
    EXPECT_FALSE(toJson(decoded(R"({"voiceSilenceTimeoutSeconds":3.5})")).contains("voiceSilenceTimeoutSeconds"));
}

TEST(AppSettings, WhatWasTaughtForOneProviderIsSetAsideForEveryOther) {
    const auto withProvider = [](AppSettings settings, const char* json) {
        auto document = toJson(settings);
        document.update(text::parseJson(json));
        return settingsFrom(document);
    };
    AppSettings taught;
    taught.adaptiveSystemPrompt = QStringLiteral("terse");
    taught.cloneLanguageStyle = QStringLiteral("dry");
    taught.cloneSource = QStringLiteral("OpenAI (a.test)");
    EXPECT_TRUE(adoptTaught(taught));
    EXPECT_FALSE(adoptTaught(taught)) << "once";
    AppSettings untaught;
    EXPECT_FALSE(adoptTaught(untaught));
    for (const char* harmless : {R"({"pollinationsBaseURL":"https://elsewhere.test"})", R"({"ollamaMode":"local"})",
                                 R"({"enableNvidiaThink":true})"})
        EXPECT_FALSE(isSetAside(withProvider(taught, harmless), Taught::CloneProfile)) << harmless;
    const char* providers[] = {
        R"({"enableNvidiaLocal":true})",
        R"({"enableOllamaVision":true})",
        R"({"enableOllamaVision":true,"ollamaMode":" local","ollamaLocalEndpoint":"http://localhost:1/api"})",
        R"({"enableOllamaVision":true,"ollamaMode":"local","ollamaLocalEndpoint":"http://localhost:2/api"})",
        R"({"enableCustomPollinations":true,"pollinationsBaseURL":"https://a.test/v1"})",
        R"({"enableCustomPollinations":true,"pollinationsBaseURL":"b.test"})",
    };
    for (const char* provider : providers) {
        auto changed = withProvider(taught, provider);
        EXPECT_TRUE(isSetAside(changed, Taught::AdaptivePrompt) && isSetAside(changed, Taught::CloneProfile))
            << provider;
        keepTaught(changed, Taught::AdaptivePrompt);
        EXPECT_FALSE(isSetAside(changed, Taught::AdaptivePrompt)) << provider;
        EXPECT_EQ(std::ranges::count_if(providers,
                                        [&](const char* other) {
                                            return providerOf(withProvider(taught, other)) == providerOf(changed);
                                        }),
                  1)
            << provider;
    }
    forgetTaught(taught, Taught::CloneProfile);
    forgetTaught(taught, Taught::AdaptivePrompt);
    EXPECT_EQ(taught, defaultSettings());
}

}  // namespace tavrelon::persistence
