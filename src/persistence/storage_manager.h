#pragma once

#include <utility>
#include <vector>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "persistence/app_settings.h"
#include "persistence/change_notice.h"
#include "platform/defaults_store.h"
#include "platform/file_system.h"
#include "platform/log.h"
#include "scenes/scene_config.h"

namespace tavrelon::persistence {

/// The names of the entries in the defaults store.
namespace defaults_keys {
inline constexpr QLatin1StringView settings("tavrelon.settings");
inline constexpr QLatin1StringView pollinationsApiKey("tavrelon.pollinationsApiKey");
inline constexpr QLatin1StringView ollamaCloudApiKey("tavrelon.ollamaCloudApiKey");
inline constexpr QLatin1StringView ollamaLocalApiKey("tavrelon.ollamaLocalApiKey");
inline constexpr QLatin1StringView nvidiaApiKey("tavrelon.nvidiaApiKey");
}  // namespace defaults_keys

/// Keeps the settings and the scenes. Both are read once, at creation. Main thread: a service with a queue of its own
/// takes a copy of what it needs before it goes there.
class StorageManager {
 public:
    /// `applicationSupport` is this program's own folder; it is made if it is missing. A settings entry that is no
    /// JSON object means the defaults, and a value in it that is not of its kind means its own; it is kept beside the
    /// next one. What cannot be read at all is never replaced; a faulty scene file is logged, stays as it
    /// is, and means the built-in scenes.
    StorageManager(platform::DefaultsStore& userDefaults, platform::FileSystem& fileSystem, platform::Log& log,
                   async::MainLoop& mainLoop, QString applicationSupport);

    /// The current settings. The reference stays good for this object's life and always shows the newest values.
    const AppSettings& settings() const { return settings_; }

    /// Lets `change` write into the settings, then tells the subscribers. Nothing is stored: `saveSettings` follows.
    template <typename Change>
    void changeSettings(Change change) {
        change(settings_);
        notice_.announce();
    }

    /// Stores the whole record. A failure is silent and leaves the stored document as it was.
    void saveSettings();

    /// Announces one change in a later turn, unless this object is gone by then.
    void notifySettingsChanged();

    /// Calls `handler` after each change of the settings and each `notifySettingsChanged`, until the subscription is
    /// dropped.
    template <typename Handler>
    [[nodiscard]] ChangeSubscription onChange(Handler handler) const {
        return notice_.subscribe(std::move(handler));
    }

    const std::vector<scenes::SceneConfig>& scenes() const { return scenes_; }

    /// The keys of settings whose stored values were not of their kind, so that their defaults serve.
    const QStringList& faultySettings() const { return faultySettings_; }

    /// Holds the keys of the model services, each as a text of its own; a missing one reads as empty.
    platform::DefaultsStore& userDefaults() const { return userDefaults_; }

    const QString& applicationSupport() const { return applicationSupport_; }

 private:
    AppSettings storedSettings();
    std::vector<scenes::SceneConfig> storedScenes() const;

    platform::DefaultsStore& userDefaults_;
    platform::FileSystem& fileSystem_;
    platform::Log& log_;
    async::MainLoop& mainLoop_;
    QString applicationSupport_;
    QStringList faultySettings_;
    AppSettings settings_;
    std::vector<scenes::SceneConfig> scenes_;
    ChangeNotice notice_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::persistence
