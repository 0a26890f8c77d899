#pragma once

#include <QVariantList>
#include <functional>
#include <vector>

#include "async/lifetime.h"
#include "hotkeys/hotkey_manager.h"
#include "platform/raw_keys.h"
#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// The page of hotkeys: eight rows, each with a switch and a key cap that records; a master switch; the defaults. Every
/// change is stored and in force at once.
class HotkeysSettingsModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(bool hotkeysEnabled READ hotkeysEnabled WRITE setHotkeysEnabled NOTIFY changed)
    Q_PROPERTY(int rowCount READ rowCount CONSTANT)
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)

 public:
    struct Services {
        async::MainLoop& mainLoop;
        persistence::StorageManager& storage;
        hotkeys::HotkeyManager& manager;
        platform::RawKeys& keys;
        std::function<void(bool enabled)> showStatus;  ///< the overlay that tells the state of all hotkeys
    };

    explicit HotkeysSettingsModel(Services services);
    ~HotkeysSettingsModel() override;

    bool hotkeysEnabled() const { return settings().hotkeysEnabled; }
    void setHotkeysEnabled(bool enabled);

    int rowCount() const;

    /// Each a record of `title`, `subtitle`, `isEnabled`, `key` (the key cap's text), `isRecording`, and `timeout`: the
    /// silence in seconds as text, empty for rows without one.
    QVariantList rows() const;

    Q_INVOKABLE void setEnabled(int row, bool enabled);

    /// A second call ends the recording and keeps the old key. Of several key caps that record, the one that began last
    /// gets the keys.
    Q_INVOKABLE void toggleRecording(int row);

    /// Seconds, clamped; a text that is no number changes nothing.
    Q_INVOKABLE void setTimeout(int row, const QString& typed);

    Q_INVOKABLE void restoreDefaults();

    /// A recording does not outlast the page.
    void disappear() override;

 private:
    bool isRecording(int row) const;
    bool handle(const platform::KeyEvent& event);
    void record(int row, const keys::HotkeyConfig& hotkey);
    void setRecording(std::vector<int> rows);
    void applyToManager();

    Services services_;
    std::vector<int> recording_;  ///< the rows whose key caps record, the latest last
    async::Timer afterglow_;      ///< runs while keys that were recorded may still reach the hotkeys
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::ui
