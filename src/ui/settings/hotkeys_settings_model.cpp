#include "ui/settings/hotkeys_settings_model.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

#include "keys/key_names.h"
#include "media/speech_locale.h"
#include "ui/settings/hotkey_rows.h"

namespace tavrelon::ui {

using keys::HotkeyConfig;
using persistence::AppSettings;
using platform::RawKey;

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

/// All that this page sets, and nothing else.
void copyThisPage(const AppSettings& from, AppSettings& to) {
    static_cast<keys::HotkeySet&>(to) = from;
    to.speechLocale = from.speechLocale;
    for (const auto& row : hotkeyRows)
        if (row.silenceTimeout)
            to.*row.silenceTimeout = from.*row.silenceTimeout;
}

AppSettings ofThisPage(const AppSettings& settings) {
    auto copy = persistence::defaultSettings();
    copyThisPage(settings, copy);
    return copy;
}

void handOn(const keys::HotkeySet& hotkeys, hotkeys::HotkeyManager& manager) {
    static_cast<keys::HotkeySet&>(manager) = hotkeys;
    manager.refresh();
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
    endRecording({});
    services_.manager.setRecordingKeys(false);
}

int HotkeysSettingsModel::rowCount() const {
    return static_cast<int>(hotkeyRows.size());
}

QVariantList HotkeysSettingsModel::rows() const {
    QVariantList list;
    for (int row = 0; row < rowCount(); ++row)
        list << shown(row);
    return list;
}

QVariantMap HotkeysSettingsModel::shown(int index) const {
    const auto& row = *rowAt(index);
    const bool records = isRecording(index);
    const auto hotkey = records ? recording_->keys.hotkey() : std::optional(settings().*row.key);
    const auto named = [&](auto name) {
        return hotkey ? name(hotkey->keyCode, hotkey->modifiers, row.zeroKey()) : text(u"recording");
    };
    const bool isRefused = records && recording_->keys.wasRefused();
    return {
        {QStringLiteral("title"), textOf(row.title, isEnglish())},
        {QStringLiteral("subtitle"), isRefused ? text(u"refused") : textOf(row.subtitle, isEnglish())},
        {QStringLiteral("isEnabled"), settings().*row.isEnabled},
        {QStringLiteral("isLive"), settings().*row.isEnabled && (settings().hotkeysEnabled || row.isAlwaysLive())},
        {QStringLiteral("key"), named(keys::displayName)},
        {QStringLiteral("keyName"), named(keys::plainName)},
        {QStringLiteral("canRecord"), row.isStored},
        {QStringLiteral("isRecording"), records},
        {QStringLiteral("warning"), warning(index)},
        {QStringLiteral("timeout"),
         row.silenceTimeout ? QString::number(settings().*row.silenceTimeout, 'g', QLocale::FloatingPointShortest)
                            : QString()},
    };
}

/// What the user had better know of a hotkey that is switched on.
QString HotkeysSettingsModel::warning(int index) const {
    const auto& row = *rowAt(index);
    const auto& hotkey = settings().*row.key;
    if (!(settings().*row.isEnabled))
        return {};
    QStringList lines, twins;
    for (const auto& other : hotkeyRows)
        if (&other != &row && settings().*other.isEnabled && isSameHotkey(row, other, settings()))
            twins << textOf(other.title, isEnglish());
    if (!twins.isEmpty())
        lines << text(u"clash").arg(twins.join(isEnglish() ? QStringLiteral(", ") : QStringLiteral("、")));
    if (std::ranges::find(heldElsewhere_, hotkey) != heldElsewhere_.end())
        lines << text(u"held");
    const bool isBare = ((hotkey.modifiers & keys::relevantModifierMask).raw & ~keys::shiftFlag.raw) == 0;
    if (row.isStored && row.hasKey(hotkey) && isBare && keys::isUsedInWriting(hotkey.keyCode))
        lines << text(u"bare");
    return lines.join(u'\n');
}

/// The desktop is asked once for each look at the page and each change, not at each drawing.
void HotkeysSettingsModel::lookAround() {
    std::vector<HotkeyConfig> hotkeys;
    for (const auto& row : hotkeyRows)
        if (const auto& hotkey = settings().*row.key; row.hasKey(hotkey))
            hotkeys.push_back(hotkey);
    heldElsewhere_ = services_.desktop.heldElsewhere(hotkeys);
    speechLocales_ = services_.speech.locales();
}

void HotkeysSettingsModel::appear() {
    lookAround();
    PageModel::appear();
}

void HotkeysSettingsModel::setEnabled(int row, bool enabled) {
    const auto* fields = rowAt(row);
    if (!fields)
        return;
    store([&](AppSettings& settings) { settings.*fields->isEnabled = enabled; });
    applyToManager();
}

void HotkeysSettingsModel::setTimeout(int row, const QString& typed) {
    const auto* fields = rowAt(row);
    const auto seconds = secondsTyped(typed);
    if (!fields || !fields->silenceTimeout || !seconds)
        return;
    const double clamped = std::clamp(*seconds, shortestTimeout, longestTimeout);
    store([&](AppSettings& settings) { settings.*fields->silenceTimeout = clamped; });
}

QVariantList HotkeysSettingsModel::speechLanguages() const {
    QVariantList list;
    for (const auto& locale : speechLocales_) {
        const auto name = QLocale(locale).nativeLanguageName();
        list << QVariantMap{{QStringLiteral("value"), locale},
                            {QStringLiteral("label"), name.isEmpty() ? locale : name}};
    }
    return list;
}

QString HotkeysSettingsModel::speechLocale() const {
    return speechLocales_.isEmpty()
               ? QString()
               : media::speechLocale(speechLocales_, settings().speechLocale, settings().appLanguage);
}

void HotkeysSettingsModel::setSpeechLocale(const QString& locale) {
    store([&](AppSettings& settings) { settings.speechLocale = locale; });
    Q_EMIT changed();
}

void HotkeysSettingsModel::setHotkeysEnabled(bool enabled) {
    store([&](AppSettings& settings) { settings.hotkeysEnabled = enabled; });
    applyToManager();
    services_.showStatus(enabled);
}

void HotkeysSettingsModel::restoreDefaults() {
    endRecording(afterglow);
    const auto& defaults = persistence::defaultSettings();
    const auto earlier = ofThisPage(settings());
    store([&](AppSettings& settings) { copyThisPage(defaults, settings); });
    applyToManager();
    services_.showStatus(defaults.hotkeysEnabled);
    if (earlier == ofThisPage(defaults))
        return;
    // Nothing of this model: the page may be gone by then.
    services_.undoOffers.offer(
        app::Undoable::HotkeyReset,
        [earlier, &storage = services_.storage, &manager = services_.manager, showStatus = services_.showStatus] {
            storage.changeSettings([&](AppSettings& settings) { copyThisPage(earlier, settings); });
            storage.saveSettings();
            handOn(storage.settings(), manager);
            showStatus(earlier.hotkeysEnabled);
        });
}

void HotkeysSettingsModel::applyToManager() {
    handOn(settings(), services_.manager);
    lookAround();
    Q_EMIT changed();
}

void HotkeysSettingsModel::toggleRecording(int row) {
    const auto* fields = rowAt(row);
    if (!fields || !fields->isStored)
        return;
    const bool isSecondPress = isRecording(row);
    endRecording(afterglow);
    if (!isSecondPress)
        startRecording(row);
    Q_EMIT changed();
}

void HotkeysSettingsModel::disappear() {
    endRecording(afterglow);
}

void HotkeysSettingsModel::startRecording(int row) {
    const auto take = [this](const RawKey& key) { handle(key); };
    const auto leave = [this] {
        endRecording({});
        Q_EMIT changed();
    };
    if (!services_.keys.capture(take, leave))
        return;
    const auto content =
        rowAt(row)->allowModifiersOnly() ? HotkeyRecording::Content::KeyOrModifiers : HotkeyRecording::Content::Key;
    recording_ = Recording{row, HotkeyRecording(content)};
    afterglow_.reset();
    services_.manager.setRecordingKeys(true);
}

/// For `pause` the hotkeys still sleep.
void HotkeysSettingsModel::endRecording(std::chrono::milliseconds pause) {
    if (!recording_)
        return;
    recording_.reset();
    services_.keys.release();
    afterglow_ = services_.mainLoop.after(pause, [this] { services_.manager.setRecordingKeys(false); });
}

/// What is recorded is written a turn later, when the key is through.
void HotkeysSettingsModel::handle(const RawKey& key) {
    if (!recording_)
        return;
    using enum HotkeyRecording::Outcome;
    switch (recording_->keys.take(key)) {
        case GoesOn:
            break;
        case Taken:
            services_.mainLoop.post(lifetime_.guard(
                [this, row = recording_->row, hotkey = *recording_->keys.hotkey()] { record(row, hotkey); }));
            endRecording(afterglow);
            break;
        case Left:
            endRecording(afterglow);
            break;
    }
    Q_EMIT changed();
}

void HotkeysSettingsModel::record(int row, const HotkeyConfig& hotkey) {
    const auto* fields = rowAt(row);
    store([&](AppSettings& settings) { settings.*fields->key = hotkey; });
    applyToManager();
}

}  // namespace tavrelon::ui
