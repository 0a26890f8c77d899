#pragma once

#include <utility>
#include <vector>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "persistence/change_notice.h"
#include "persistence/service_keys.h"
#include "platform/defaults_store.h"
#include "platform/file_system.h"
#include "platform/log.h"
#include "scenes/scene_config.h"

namespace tavrelon::persistence {

/// The name of the entry in the defaults store that holds the settings.
namespace defaults_keys {
inline constexpr QLatin1StringView settings("tavrelon.settings");
}  // namespace defaults_keys

/// Keeps the settings, the keys and the scenes. All are read once, at creation. Main thread: a service with a queue of
/// its own takes a copy of what it needs before it goes there.
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

    /// Whether nothing was stored before this object was made, as at the first start.
    bool isNew() const { return isNew_; }

    /// Lets `change` write into the settings, then tells the subscribers. Nothing is stored: `saveSettings` follows.
    template <typename Change>
    void changeSettings(Change change) {
        change(settings_);
        notice_.announce();
    }

    /// Stores the whole record. A failure is silent and leaves the stored document as it was.
    void saveSettings();

    const ServiceKeys& keys() const { return keys_; }

    /// Lets `change` write into the keys and stores them; the subscribers hear of it in a later turn. A store that
    /// refuses a key loses it at the end of the program.
    template <typename Change>
    void changeKeys(Change change) {
        const auto before = keys_;
        change(keys_);
        notifySettingsChanged();
        storeServiceKeys(userDefaults_, before, keys_);
    }

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

    const QString& applicationSupport() const { return applicationSupport_; }

 private:
    AppSettings storedSettings();
    std::vector<scenes::SceneConfig> storedScenes() const;

    platform::DefaultsStore& userDefaults_;
    platform::FileSystem& fileSystem_;
    platform::Log& log_;
    async::MainLoop& mainLoop_;
    QString applicationSupport_;
    bool isNew_ = false;
    QStringList faultySettings_;
    AppSettings settings_;
    ServiceKeys keys_;
    std::vector<scenes::SceneConfig> scenes_;
    ChangeNotice notice_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::persistence
