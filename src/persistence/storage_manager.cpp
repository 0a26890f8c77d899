#include "persistence/storage_manager.h"

namespace tavrelon::persistence {

namespace {

/// Absent when a value has no JSON form, as a number that is not finite.
std::optional<QByteArray> encoded(const AppSettings& settings) {
    try {
        return text::compactJson(toJson(settings));
    } catch (const text::JsonError&) {
        return std::nullopt;
    }
}

/// The next change replaces what a person may still be able to mend, so it is kept beside it.
QString brokenSettings() {
    return defaults_keys::settings + QStringLiteral(".broken");
}

}  // namespace

StorageManager::StorageManager(platform::DefaultsStore& userDefaults, platform::FileSystem& fileSystem,
                               platform::Log& log, async::MainLoop& mainLoop, QString applicationSupport)
    : userDefaults_(userDefaults),
      fileSystem_(fileSystem),
      log_(log),
      mainLoop_(mainLoop),
      applicationSupport_(std::move(applicationSupport)) {
    // Without the folder the program still works; it only remembers nothing.
    static_cast<void>(fileSystem_.createDirectory(applicationSupport_));
    settings_ = storedSettings();
    keys_ = storedServiceKeys(userDefaults_, settings_);
    scenes_ = storedScenes();
}

AppSettings StorageManager::storedSettings() {
    const auto document = userDefaults_.data(defaults_keys::settings);
    isNew_ = !document;
    if (!document)
        return defaultSettings();
    try {
        auto stored = storedSettingsFrom(text::parseJson(*document));
        faultySettings_ = std::move(stored.faulty);
        for (const auto& key : faultySettings_)
            log_.line(QStringLiteral("[Settings] The value of \"%1\" is not of its kind; the default serves").arg(key));
        if (!faultySettings_.isEmpty())
            userDefaults_.setData(brokenSettings(), *document);
        return std::move(stored.settings);
    } catch (const text::JsonError&) {
        log_.line(QStringLiteral("[Settings] The document is not understood; the defaults serve, and it is kept"));
        faultySettings_ = {defaults_keys::settings};
        userDefaults_.setData(brokenSettings(), *document);
        return defaultSettings();
    }
}

std::vector<scenes::SceneConfig> StorageManager::storedScenes() const {
    const auto path = applicationSupport_ + QStringLiteral("/scenes.json");
    if (!fileSystem_.exists(path))
        return scenes::defaultScenes();
    const auto failed = [this](const QString& error) {
        log_.line(QStringLiteral("Failed to load scenes: ") + error);
        return scenes::defaultScenes();
    };
    const auto document = fileSystem_.read(path);
    if (!document)
        return failed(document.error().description);
    try {
        return scenes::sceneListFrom(text::parseJson(*document));
    } catch (const text::JsonError& error) {
        return failed(error.localizedDescription());
    }
}

void StorageManager::saveSettings() {
    // What cannot be encoded is not stored: the document that is there is better than one with a hole.
    if (const auto document = encoded(settings_))
        userDefaults_.setData(defaults_keys::settings, *document);
}

void StorageManager::notifySettingsChanged() {
    mainLoop_.post(lifetime_.guard([this] { notice_.announce(); }));
}

}  // namespace tavrelon::persistence
