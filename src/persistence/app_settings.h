#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <optional>

#include "keys/hotkey_set.h"
#include "text/json.h"

namespace tavrelon::persistence {

/// The addresses that stand in the settings until the user changes them, as configured at build time.
QString defaultPollinationsBaseURL();
QString defaultOllamaLocalEndpoint();
QString defaultCloneApiBaseURL();

/// Every setting of the user but the keys of the model services. A new record holds the defaults.
struct AppSettings : keys::HotkeySet {
    using Date = std::chrono::system_clock::time_point;

    double voiceInputSilenceTimeoutSeconds = 2.0;
    double voiceDictationSilenceTimeoutSeconds = 2.0;
    QString speechLocale;  ///< as "zh-CN"; empty until the user has chosen, see `media::speechLocale`

    QString screenshotMode = QStringLiteral("focusedWindow");  ///< or "fullScreen", "none"
    double screenshotQuality = 0.7;
    qint64 maxScreenshotWidth = 1920;  ///< pixels

    qint64 aiMaxTokens = 2000;   ///< carried along; nothing reads it
    double aiTemperature = 0.7;  ///< carried along; nothing reads it
    double aiTimeout = 30.0;     ///< carried along; nothing reads it

    QString visionModelPreference = QStringLiteral("speed");  ///< or "quality"
    bool enableCustomPollinations = false;
    QString pollinationsBaseURL = defaultPollinationsBaseURL();
    QString pollinationsImageModel = QStringLiteral("zimage");
    QString pollinationsVisionModel = QStringLiteral("openai");
    QString textOnlyModel;  ///< a model of the custom gateway that takes no pictures, as its server said
    std::optional<bool> fallBackToOtherServices;  ///< absent until the user has said; see `PollinationsService`
    bool enableOllamaVision = false;
    QString ollamaMode = QStringLiteral("cloud");  ///< or "local"
    QString ollamaCloudModel;
    QString ollamaLocalModel = QStringLiteral("genmini-3-flash-preview");
    QString ollamaLocalEndpoint = defaultOllamaLocalEndpoint();
    bool enableImagePromptEnhancement = true;
    bool hasAnswered = false;       ///< whether any request was ever answered
    bool picturesByRequest = true;  ///< whether a wish for a picture is answered with one
    bool enableAI = true;           ///< without it every input for a model ends in an error; no view edits it

    bool autoReset = true;        ///< carried along; nothing reads it
    double autoResetDelay = 2.0;  ///< seconds; carried along; nothing reads it
    bool showStatusHUD = false;   ///< carried along; nothing reads it

    QString adaptiveSystemPrompt;
    std::optional<Date> adaptiveSystemPromptUpdatedAt;
    QString adaptiveSystemPromptSource;    ///< who taught it, for the user to read; empty where that is not known
    QString adaptiveSystemPromptProvider;  ///< the provider that may have it, see `taught.h`; likewise below

    QString cloneApiBaseURL = defaultCloneApiBaseURL();
    QString cloneLanguageStyle;
    QString cloneSystemPrompt;
    std::optional<Date> cloneLanguageStyleUpdatedAt;
    QString cloneSource;
    QString cloneProvider;

    bool enableNvidiaLocal = false;
    bool enableNvidiaThink = false;

    bool keepClipboard = false;  ///< gives the earlier content back after a paste

    bool enableHistory = true;      ///< carried along; nothing reads it
    qint64 maxHistoryEntries = 20;  ///< how many entries feed the style profile; the history's own cap is constant
    bool enableLocalLearning = true;
    bool shareImprovements = false;              ///< carried along; nothing reads it
    QString appLanguage = QStringLiteral("en");  ///< any other value is Chinese

    bool operator==(const AppSettings&) const = default;
};

/// The record with every default.
const AppSettings& defaultSettings();

/// The stored document. Absent dates are left out. Throws `text::JsonError` when a number is not finite, which JSON
/// cannot hold.
text::Json toJson(const AppSettings& settings);

/// The settings of a document, and the keys whose values were not of their kind.
struct StoredSettings {
    AppSettings settings;
    QStringList faulty;
};

/// A key that is missing or null takes its default, and so does one whose value is of another type or out of range;
/// unknown keys are ignored. Throws `text::JsonError` for what is no object.
StoredSettings storedSettingsFrom(const text::Json& json);

}  // namespace tavrelon::persistence
