#pragma once

#include <QSocketNotifier>
#include <map>
#include <memory>
#include <set>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/linux/process/key_guardian.h"
#include "desktop/wayland/sway/sway_configuration.h"
#include "desktop/wayland/sway/sway_left_overs.h"
#include "platform/hotkeys.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// Hotkeys of sway, as bindings that are made while the program runs. A combination that the user's configuration binds
/// stays the user's: it is not bound, and named in the log. In a mode of the user's own (such as one for resizing) no
/// hotkey is ours. The bindings of a program that is killed are removed by its guardian, or else by the next start.
///
/// Main thread. If sway goes away no hotkey is told any more, and the log says so.
class SwayHotkeys : public platform::Hotkeys {
 public:
    SwayHotkeys(async::MainLoop& loop, platform::Log& log) : loop_(loop), log_(log) {}
    ~SwayHotkeys() override;

    std::expected<void, platform::HotkeysError> start(Handler handler) override;
    void stop() override;
    void declare(const std::vector<platform::WantedHotkey>& wanted) override;
    std::vector<keys::HotkeyConfig> heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) override;

 private:
    struct Target {
        std::size_t hotkey;  ///< its place in `known_`
        SwayBinding binding;
    };
    struct Bound {
        std::size_t hotkey;
        QString made;
    };

    void readable();
    void happened(const SwayAnswer& event);
    void pressed(const text::Json& event);
    void learnUsersKeys();
    void apply();
    std::map<QString, Target> targets();
    void unbindAllBut(const std::function<bool(const QString& keys, const Bound& bound)>& isKept);
    void bind(const QString& keys, const Target& target);
    std::size_t numberOf(const platform::WantedHotkey& hotkey);
    void endEvents();

    async::MainLoop& loop_;
    platform::Log& log_;
    Handler handler_;
    std::unique_ptr<SwayIpc> commands_;
    std::unique_ptr<SwayIpc> events_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::vector<platform::WantedHotkey> wanted_;
    std::vector<platform::WantedHotkey> known_;  ///< all that ever were; the number of one goes with its binding
    std::vector<SwayCombination> users_;
    QString mode_;
    int layouts_ = 1;
    std::map<QString, Bound> bound_;  ///< by the first of what was tried for it
    SwayLeftOvers leftOvers_;
    bool isAllGivenBack_ = true;
    std::optional<KeyGuardian> guardian_;
    std::set<QString> reported_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
