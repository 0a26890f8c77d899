#include "ui/settings/hotkeys_settings_model.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

#include "keys/key_names.h"
#include "ui/settings/hotkey_rows.h"

namespace tavrelon::ui {

using keys::HotkeyConfig;
using persistence::AppSettings;
using platform::KeyEvent;

namespace {

constexpr double shortestTimeout = 0.5;
constexpr double longestTimeout = 30.0;

/// The listener sees a key later than our window does, and a finger leaves it later still.
constexpr std::chrono::milliseconds afterglow{400};

const HotkeyRow* rowAt(int index) {
    return index >= 0 && index < static_cast<int>(hotkeyRows.size()) ? &hotkeyRows[static_cast<std::size_t>(index)]
                                                                     : nullptr;
}

QString textOf(const PageText& text, bool isEnglish) {
    return (isEnglish ? text.english : text.chinese).toString();
}

/// With a point or a comma, in the digits of any script.
std::optional<double> secondsTyped(const QString& typed) {
    bool isNumber = false;
    auto plain = typed.normalized(QString::NormalizationForm_KC).trimmed();
    const double seconds = QLocale::c().toDouble(plain.replace(u',', u'.'), &isNumber);
    return isNumber && std::isfinite(seconds) ? std::optional(seconds) : std::nullopt;
}

}  // namespace

HotkeysSettingsModel::HotkeysSettingsModel(Services services)
    : PageModel(services.storage, hotkeysPageTexts), services_(std::move(services)) {}

HotkeysSettingsModel::~HotkeysSettingsModel() {
    setRecording({});
    services_.manager.setRecordingKeys(false);
}

int HotkeysSettingsModel::rowCount() const {
    return static_cast<int>(hotkeyRows.size());
}

QVariantList HotkeysSettingsModel::rows() const {
    QVariantList list;
    for (const auto& row : hotkeyRows) {
        const auto& hotkey = settings().*row.key;
        const bool records = isRecording(static_cast<int>(list.size()));
        const auto timeout = row.silenceTimeout
                                 ? QString::number(settings().*row.silenceTimeout, 'g', QLocale::FloatingPointShortest)
                                 : QString();
        list << QVariantMap{
            {QStringLiteral("title"), textOf(row.title, isEnglish())},
            {QStringLiteral("subtitle"), textOf(row.subtitle, isEnglish())},
            {QStringLiteral("isEnabled"), settings().*row.isEnabled},
            {QStringLiteral("key"), records ? text(u"recording") : keys::displayName(hotkey.keyCode, hotkey.modifiers)},
            {QStringLiteral("isRecording"), records},
            {QStringLiteral("timeout"), timeout},
        };
    }
    return list;
}

void HotkeysSettingsModel::setEnabled(int row, bool enabled) {
    const auto* fields = rowAt(row);
    if (!fields)
        return;
    store([&](AppSettings& settings) { settings.*fields->isEnabled = enabled; });
    services_.manager.*fields->isEnabled = enabled;
    services_.manager.refresh();
}

void HotkeysSettingsModel::setTimeout(int row, const QString& typed) {
    const auto* fields = rowAt(row);
    const auto seconds = secondsTyped(typed);
    if (!fields || !fields->silenceTimeout || !seconds)
        return;
    const double clamped = std::clamp(*seconds, shortestTimeout, longestTimeout);
    store([&](AppSettings& settings) { settings.*fields->silenceTimeout = clamped; });
}

void HotkeysSettingsModel::setHotkeysEnabled(bool enabled) {
    store([&](AppSettings& settings) { settings.hotkeysEnabled = enabled; });
    services_.manager.hotkeysEnabled = enabled;
    services_.manager.refresh();
    services_.showStatus(enabled);
}

void HotkeysSettingsModel::restoreDefaults() {
    const auto& defaults = persistence::defaultSettings();
    store([&](AppSettings& settings) {
        static_cast<keys::HotkeySet&>(settings) = defaults;
        for (const auto& row : hotkeyRows)
            if (row.silenceTimeout)
                settings.*row.silenceTimeout = defaults.*row.silenceTimeout;
    });
    applyToManager();
    services_.showStatus(defaults.hotkeysEnabled);
}

void HotkeysSettingsModel::applyToManager() {
    static_cast<keys::HotkeySet&>(services_.manager) = settings();
    services_.manager.refresh();
}

bool HotkeysSettingsModel::isRecording(int row) const {
    return std::ranges::find(recording_, row) != recording_.end();
}

void HotkeysSettingsModel::toggleRecording(int row) {
    if (!rowAt(row))
        return;
    auto rows = recording_;
    if (std::erase(rows, row) == 0)
        rows.push_back(row);
    setRecording(std::move(rows));
}

void HotkeysSettingsModel::disappear() {
    setRecording({});
}

void HotkeysSettingsModel::setRecording(std::vector<int> rows) {
    if (rows == recording_)
        return;
    recording_ = std::move(rows);
    if (recording_.empty()) {
        services_.keys.release();
        afterglow_ = services_.mainLoop.after(afterglow, [this] { services_.manager.setRecordingKeys(false); });
    } else {
        afterglow_.reset();
        services_.manager.setRecordingKeys(true);
        services_.keys.capture([this](const KeyEvent& event) { return handle(event); });
    }
    Q_EMIT changed();
}

/// True if the key is used for the recording. What is recorded is written a turn later, when the key is through.
bool HotkeysSettingsModel::handle(const KeyEvent& event) {
    if (recording_.empty())
        return false;
    const int row = recording_.back();
    const auto flags = event.modifierFlags & keys::relevantModifierMask;
    HotkeyConfig hotkey{event.keyCode, flags};
    if (event.type == KeyEvent::Type::FlagsChanged) {
        if (!rowAt(row)->allowModifiersOnly() || flags.isEmpty())
            return false;
        hotkey.keyCode = 0;
    }
    services_.mainLoop.post(lifetime_.guard([this, row, hotkey] { record(row, hotkey); }));
    return true;
}

void HotkeysSettingsModel::record(int row, const HotkeyConfig& hotkey) {
    const auto* fields = rowAt(row);
    store([&](AppSettings& settings) { settings.*fields->key = hotkey; });
    services_.manager.*fields->key = hotkey;
    services_.manager.refresh();
    auto rows = recording_;
    std::erase(rows, row);
    setRecording(std::move(rows));
}

}  // namespace tavrelon::ui
