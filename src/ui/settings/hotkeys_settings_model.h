#pragma once

#include <QVariantList>
#include <functional>
#include <vector>

#include "app/undo_offers.h"
#include "async/lifetime.h"
#include "hotkeys/hotkey_manager.h"
#include "platform/hotkeys.h"
#include "platform/raw_keys.h"
#include "platform/speech.h"
#include "ui/dashboard/page_model.h"
#include "ui/settings/hotkey_recording.h"

namespace tavrelon::ui {

/// The page of hotkeys: rows of a switch and a key cap that records; a master switch; the defaults. Every change is
/// stored and in force at once; what is unwise about a hotkey is said under it.
class HotkeysSettingsModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(bool hotkeysEnabled READ hotkeysEnabled WRITE setHotkeysEnabled NOTIFY changed)
    Q_PROPERTY(int rowCount READ rowCount CONSTANT)
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)
    Q_PROPERTY(QVariantList speechLanguages READ speechLanguages NOTIFY changed)
    Q_PROPERTY(QString speechLocale READ speechLocale NOTIFY changed)

 public:
    struct Services {
        async::MainLoop& mainLoop;
        persistence::StorageManager& storage;
        hotkeys::HotkeyManager& manager;
        platform::RawKeys& keys;
        std::function<void(bool enabled)> showStatus;  ///< the overlay that tells the state of all hotkeys

        platform::Hotkeys& desktop;  ///< knows which keys something else holds
        platform::Speech& speech;    ///< knows which recognisers are installed
        app::UndoOffers& undoOffers;
    };

    explicit HotkeysSettingsModel(Services services);
    ~HotkeysSettingsModel() override;

    bool hotkeysEnabled() const { return settings().hotkeysEnabled; }
    void setHotkeysEnabled(bool enabled);

    int rowCount() const;

    /// Each a record of `title`, `subtitle`, `isEnabled`, `isLive` (its press counts now), `key` (the key cap's text),
    /// `keyName` (the same in words), `canRecord`, `isRecording`, `warning` (empty where all is well), and `timeout`:
    /// the silence in seconds as text, empty for rows without one.
    QVariantList rows() const;

    /// The installed recognisers as records of `value`, a locale, and `label`, the language's own name for itself.
    QVariantList speechLanguages() const;

    /// Of the recogniser that is in use; empty when there is none.
    QString speechLocale() const;
    Q_INVOKABLE void setSpeechLocale(const QString& locale);

    Q_INVOKABLE void setEnabled(int row, bool enabled);

    /// A second call ends the recording and keeps the old key, as Escape does and leaving the window; another row's
    /// takes its place. Nothing is recorded while none of our windows has the keyboard.
    Q_INVOKABLE void toggleRecording(int row);

    /// Seconds, clamped; a text that is no number changes nothing.
    Q_INVOKABLE void setTimeout(int row, const QString& typed);

    /// Offers to take it back where it changes anything.
    Q_INVOKABLE void restoreDefaults();

    void appear() override;

    /// A recording does not outlast the page.
    void disappear() override;

 private:
    struct Recording {
        int row;
        HotkeyRecording keys;
    };

    bool isRecording(int row) const { return recording_ && recording_->row == row; }
    QVariantMap shown(int row) const;
    QString warning(int row) const;
    void handle(const platform::RawKey& key);
    void record(int row, const keys::HotkeyConfig& hotkey);
    void startRecording(int row);
    void endRecording(std::chrono::milliseconds pause);
    void applyToManager();
    void lookAround();

    Services services_;
    std::optional<Recording> recording_;
    std::vector<keys::HotkeyConfig> heldElsewhere_;
    QStringList speechLocales_;
    async::Timer afterglow_;  ///< runs while keys that were recorded may still reach the hotkeys
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::ui
