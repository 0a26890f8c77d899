#pragma once

#include <array>
#include <variant>

#include "persistence/app_settings.h"

namespace tavrelon::persistence {

/// Where a field lives in the record; the alternative says how it is written in JSON.
using SettingsMember =
    std::variant<keys::HotkeyConfig AppSettings::*, bool AppSettings::*, double AppSettings::*, qint64 AppSettings::*,
                 QString AppSettings::*, std::optional<AppSettings::Date> AppSettings::*,
                 std::optional<bool> AppSettings::*>;

/// One field: its key, its place in the written document, and its member.
struct SettingsField {
    const char* key;
    std::size_t place;
    SettingsMember member;
};

/// Every field of the settings, in the order of reading.
inline constexpr auto settingsFields = std::to_array<SettingsField>({
    {"toggleHotkey", 0, &AppSettings::toggleHotkey},
    {"toggleHotkeyEnabled", 9, &AppSettings::toggleHotkeyEnabled},
    {"voiceHotkey", 1, &AppSettings::voiceHotkey},
    {"voiceHotkeyEnabled", 10, &AppSettings::voiceHotkeyEnabled},
    {"voiceDictationHotkey", 2, &AppSettings::voiceDictationHotkey},
    {"voiceDictationHotkeyEnabled", 11, &AppSettings::voiceDictationHotkeyEnabled},
    {"voiceInputSilenceTimeoutSeconds", 12, &AppSettings::voiceInputSilenceTimeoutSeconds},
    {"voiceDictationSilenceTimeoutSeconds", 13, &AppSettings::voiceDictationSilenceTimeoutSeconds},
    {"cancelHotkey", 3, &AppSettings::cancelHotkey},
    {"cancelHotkeyEnabled", 14, &AppSettings::cancelHotkeyEnabled},
    {"autoReplyHotkey", 4, &AppSettings::autoReplyHotkey},
    {"autoReplyHotkeyEnabled", 15, &AppSettings::autoReplyHotkeyEnabled},
    {"toggleAllHotkeysHotkey", 5, &AppSettings::toggleAllHotkeysHotkey},
    {"toggleAllHotkeysHotkeyEnabled", 16, &AppSettings::toggleAllHotkeysHotkeyEnabled},
    {"videoHotkey", 6, &AppSettings::videoHotkey},
    {"videoHotkeyEnabled", 17, &AppSettings::videoHotkeyEnabled},
    {"floatingInputHotkey", 7, &AppSettings::floatingInputHotkey},
    {"floatingInputHotkeyEnabled", 18, &AppSettings::floatingInputHotkeyEnabled},
    {"hotkeysEnabled", 8, &AppSettings::hotkeysEnabled},
    {"screenshotMode", 19, &AppSettings::screenshotMode},
    {"screenshotQuality", 20, &AppSettings::screenshotQuality},
    {"maxScreenshotWidth", 21, &AppSettings::maxScreenshotWidth},
    {"aiMaxTokens", 22, &AppSettings::aiMaxTokens},
    {"aiTemperature", 23, &AppSettings::aiTemperature},
    {"aiTimeout", 24, &AppSettings::aiTimeout},
    {"visionModelPreference", 25, &AppSettings::visionModelPreference},
    {"enableCustomPollinations", 26, &AppSettings::enableCustomPollinations},
    {"pollinationsBaseURL", 27, &AppSettings::pollinationsBaseURL},
    {"pollinationsImageModel", 28, &AppSettings::pollinationsImageModel},
    {"pollinationsVisionModel", 29, &AppSettings::pollinationsVisionModel},
    {"enableOllamaVision", 30, &AppSettings::enableOllamaVision},
    {"ollamaMode", 31, &AppSettings::ollamaMode},
    {"ollamaCloudModel", 32, &AppSettings::ollamaCloudModel},
    {"ollamaLocalModel", 33, &AppSettings::ollamaLocalModel},
    {"ollamaLocalEndpoint", 34, &AppSettings::ollamaLocalEndpoint},
    {"enableImagePromptEnhancement", 35, &AppSettings::enableImagePromptEnhancement},
    {"enableAI", 36, &AppSettings::enableAI},
    {"autoReset", 37, &AppSettings::autoReset},
    {"autoResetDelay", 38, &AppSettings::autoResetDelay},
    {"showStatusHUD", 39, &AppSettings::showStatusHUD},
    {"adaptiveSystemPrompt", 40, &AppSettings::adaptiveSystemPrompt},
    {"adaptiveSystemPromptUpdatedAt", 41, &AppSettings::adaptiveSystemPromptUpdatedAt},
    {"cloneApiBaseURL", 42, &AppSettings::cloneApiBaseURL},
    {"cloneLanguageStyle", 43, &AppSettings::cloneLanguageStyle},
    {"cloneSystemPrompt", 44, &AppSettings::cloneSystemPrompt},
    {"cloneLanguageStyleUpdatedAt", 45, &AppSettings::cloneLanguageStyleUpdatedAt},
    {"enableNvidiaLocal", 46, &AppSettings::enableNvidiaLocal},
    {"enableNvidiaThink", 47, &AppSettings::enableNvidiaThink},
    {"enableHistory", 48, &AppSettings::enableHistory},
    {"maxHistoryEntries", 49, &AppSettings::maxHistoryEntries},
    {"enableLocalLearning", 50, &AppSettings::enableLocalLearning},
    {"shareImprovements", 51, &AppSettings::shareImprovements},
    {"appLanguage", 52, &AppSettings::appLanguage},
    {"quickAskHotkeyEnabled", 53, &AppSettings::quickAskHotkeyEnabled},
    {"adaptiveSystemPromptSource", 54, &AppSettings::adaptiveSystemPromptSource},
    {"adaptiveSystemPromptProvider", 55, &AppSettings::adaptiveSystemPromptProvider},
    {"cloneSource", 56, &AppSettings::cloneSource},
    {"cloneProvider", 57, &AppSettings::cloneProvider},
    {"keepClipboard", 58, &AppSettings::keepClipboard},
    {"fallBackToOtherServices", 59, &AppSettings::fallBackToOtherServices},
    {"picturesByRequest", 60, &AppSettings::picturesByRequest},
    {"textOnlyModel", 61, &AppSettings::textOnlyModel},
    {"hasAnswered", 62, &AppSettings::hasAnswered},
    {"speechLocale", 63, &AppSettings::speechLocale},
});

/// The same fields in the order of writing.
inline constexpr auto settingsFieldsInDocumentOrder = [] {
    auto fields = settingsFields;
    for (const auto& field : settingsFields)
        fields.at(field.place) = field;
    for (std::size_t place = 0; place < fields.size(); ++place)
        if (fields[place].place != place)
            throw "a place in the document is taken twice";
    return fields;
}();

}  // namespace tavrelon::persistence
