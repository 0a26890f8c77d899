#include "desktop/kwin/keys/kwin_hotkeys.h"

#include <algorithm>

#include "desktop/kwin/keys/qt_keys.h"
#include "keys/key_names.h"

namespace tavrelon::desktop {

using platform::WantedHotkey;
using Fires = WantedHotkey::Fires;

namespace {

/// Whoever holds modifiers longer thinks of something else.
constexpr std::chrono::seconds longestHold{1};

QString nameOf(const WantedHotkey& hotkey) {
    return keys::plainName(hotkey.keys.keyCode, hotkey.keys.modifiers & keys::relevantModifierMask,
                           hotkey.fires == Fires::OnPress ? keys::ZeroKey::A : keys::ZeroKey::None);
}

/// The same in every run, since KGlobalAccel keeps it on disk.
QString actionOf(const WantedHotkey& hotkey) {
    return QStringLiteral("hotkey-%1-%2-%3")
        .arg(hotkey.keys.keyCode)
        .arg((hotkey.keys.modifiers & keys::relevantModifierMask).raw, 0, 16)
        .arg(static_cast<int>(hotkey.fires));
}

}  // namespace

KWinHotkeys::KWinHotkeys(async::MainLoop& loop, platform::Log& log, std::shared_ptr<KWinBus> bus,
                         std::shared_ptr<const OwnPosts> posts)
    : loop_(loop), log_(log), bus_(std::move(bus)), posts_(std::move(posts)), accel_(bus_) {
    watcher_.setConnection(bus_->connection());
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    watcher_.addWatchedService(GlobalAccel::service);
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        if (!handler_)
            return;
        held_.clear();  // they went with the one before
        pressed_.clear();
        apply();
    });
}

KWinHotkeys::~KWinHotkeys() {
    KWinHotkeys::stop();
    if (guardian_ && isAllGivenBack_)
        guardian_->dismiss();
}

std::expected<void, platform::HotkeysError> KWinHotkeys::start(Handler handler) {
    stop();
    if (!accel_.isThere())
        return std::unexpected(platform::HotkeysError{QStringLiteral("KWin has no global shortcuts.")});
    const auto& from = GlobalAccel::component;
    auto& bus = bus_->connection();
    if (!bus.connect(from.service, from.path, from.interface, QStringLiteral("globalShortcutPressed"), this,
                     SLOT(pressed(QString, QString, qlonglong))) ||
        !bus.connect(from.service, from.path, from.interface, QStringLiteral("globalShortcutReleased"), this,
                     SLOT(released(QString, QString, qlonglong))))
        return std::unexpected(platform::HotkeysError{QStringLiteral("KWin does not tell of its shortcuts.")});
    handler_ = std::move(handler);
    if (!guardian_)
        guardian_.emplace(log_);
    accel_.letGoOfAll();
    apply();
    return {};
}

void KWinHotkeys::stop() {
    handler_ = nullptr;
    // What is left, the guardian lets go, or the next start.
    isAllGivenBack_ =
        std::ranges::all_of(std::exchange(held_, {}), [this](const auto& each) { return accel_.letGo(each.first); });
    pressed_.clear();
}

void KWinHotkeys::declare(const std::vector<WantedHotkey>& wanted) {
    wanted_ = wanted;
    apply();
}

void KWinHotkeys::apply() {
    if (!handler_)
        return;
    std::map<QString, WantedHotkey> wanted;
    for (const auto& hotkey : wanted_)
        wanted.emplace(actionOf(hotkey), hotkey);
    // What is not answered is tried again the next time: a KWin that hangs may cost one wait only.
    for (auto each = held_.begin(); each != held_.end();) {
        if (wanted.contains(each->first)) {
            ++each;
            continue;
        }
        if (!accel_.letGo(each->first))
            return;
        pressed_.erase(each->first);
        each = held_.erase(each);
    }
    for (const auto& [action, hotkey] : wanted)
        if (!held_.contains(action) && !hold(action, hotkey))
            return;
}

bool KWinHotkeys::hold(const QString& action, const WantedHotkey& hotkey) {
    const auto keys = qtKeysOf(hotkey);
    if (keys.empty()) {
        report(QStringLiteral("[Hotkey] %1 is on no key").arg(nameOf(hotkey)));
        return true;
    }
    const auto outcome = accel_.hold(action, nameOf(hotkey), keys);
    if (outcome == GlobalAccel::Outcome::Held)
        held_.emplace(action, hotkey);
    else if (outcome == GlobalAccel::Outcome::Taken)
        report(QStringLiteral("[Hotkey] %1 is another program's in Plasma's shortcuts").arg(nameOf(hotkey)));
    return outcome != GlobalAccel::Outcome::NoAnswer;
}

void KWinHotkeys::report(const QString& line) {
    if (reported_.insert(line).second)
        log_.line(line);
}

std::vector<keys::HotkeyConfig> KWinHotkeys::heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) {
    std::vector<keys::HotkeyConfig> elsewhere;
    for (const auto& keys : hotkeys) {
        const WantedHotkey hotkey{.keys = keys, .fires = Fires::OnPress};
        const auto numbers = qtKeysOf(hotkey);
        if (!numbers.empty() && !held_.contains(actionOf(hotkey)) && !accel_.isFree(numbers.front()))
            elsewhere.push_back(keys);
    }
    return elsewhere;
}

void KWinHotkeys::pressed(const QString&, const QString& action, qlonglong) {
    const auto hotkey = held_.find(action);
    // A key that is held is told again and again.
    if (hotkey == held_.end() || pressed_.contains(action))
        return;
    const bool isChord = hotkey->second.fires != Fires::OnPress;
    if (isChord && posts_->isRecent())
        return;
    pressed_[action] = std::chrono::steady_clock::now();
    if (hotkey->second.fires != Fires::OnModifiersReleased)
        tell(hotkey->second);
}

void KWinHotkeys::released(const QString&, const QString& action, qlonglong) {
    const auto press = pressed_.extract(action);
    const auto hotkey = held_.find(action);
    if (!press.empty() && hotkey != held_.end() && hotkey->second.fires == Fires::OnModifiersReleased &&
        std::chrono::steady_clock::now() - press.mapped() <= longestHold)
        tell(hotkey->second);
}

/// In a turn of its own: the handler may stop all this.
void KWinHotkeys::tell(const WantedHotkey& hotkey) {
    loop_.post(lifetime_.guard([this, hotkey] {
        if (handler_)
            handler_(hotkey);
    }));
}

}  // namespace tavrelon::desktop
