#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <chrono>
#include <map>
#include <memory>
#include <set>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/kwin/keys/global_accel.h"
#include "desktop/kwin/keys/own_posts.h"
#include "desktop/linux/process/key_guardian.h"
#include "platform/hotkeys.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// Hotkeys of Plasma by KGlobalAccel. A combination that another program holds stays there: it is not ours, and named
/// in the log. KWin withholds the keys of a process that is killed from all applications, until its guardian lets them
/// go, or else the next start.
///
/// Modifiers alone are told by their press, whatever key comes next: nobody says that it was the begin of a longer
/// shortcut. So those that fire when they are let go do so only where that was soon.
///
/// Main thread. If KWin goes away, the hotkeys are held anew once it is back.
class KWinHotkeys : public QObject, public platform::Hotkeys {
    Q_OBJECT

 public:
    /// What is posted may look like modifiers alone; `posts` tells when.
    KWinHotkeys(async::MainLoop& loop, platform::Log& log, std::shared_ptr<KWinBus> bus,
                std::shared_ptr<const OwnPosts> posts);
    ~KWinHotkeys() override;

    std::expected<void, platform::HotkeysError> start(Handler handler) override;
    void stop() override;
    void declare(const std::vector<platform::WantedHotkey>& wanted) override;
    std::vector<keys::HotkeyConfig> heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) override;

 private Q_SLOTS:
    void pressed(const QString& component, const QString& action, qlonglong at);
    void released(const QString& component, const QString& action, qlonglong at);

 private:
    void apply();
    /// False where nobody answers.
    bool hold(const QString& action, const platform::WantedHotkey& hotkey);
    void report(const QString& line);
    void tell(const platform::WantedHotkey& hotkey);

    async::MainLoop& loop_;
    platform::Log& log_;
    std::shared_ptr<KWinBus> bus_;
    std::shared_ptr<const OwnPosts> posts_;
    GlobalAccel accel_;
    QDBusServiceWatcher watcher_;
    Handler handler_;
    std::vector<platform::WantedHotkey> wanted_;
    std::map<QString, platform::WantedHotkey> held_;                    ///< by action
    std::map<QString, std::chrono::steady_clock::time_point> pressed_;  ///< when; until it is let go
    std::set<QString> reported_;
    bool isAllGivenBack_ = true;
    std::optional<KeyGuardian> guardian_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
