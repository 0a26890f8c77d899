#pragma once

#include <memory>
#include <set>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/gnome/shell_connection.h"
#include "platform/hotkeys.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// Hotkeys of GNOME by our extension, which lets go of them with the connection: a process that is killed leaves none
/// behind. A combination that the shell or another extension has stays there, and the log names it.
///
/// Modifiers alone are told by their press, whatever key comes next, as nobody tells of that; those that fire when they
/// are let go do so where that was within a second. Main thread.
class GnomeHotkeys : public platform::Hotkeys {
 public:
    GnomeHotkeys(async::MainLoop& loop, platform::Log& log, std::shared_ptr<ShellConnection> shell);
    ~GnomeHotkeys() override = default;  // what is held ends with the connection

    std::expected<void, platform::HotkeysError> start(Handler handler) override;
    void stop() override;
    void declare(const std::vector<platform::WantedHotkey>& wanted) override;
    std::vector<keys::HotkeyConfig> heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) override;

 private:
    void apply();
    bool hold(const std::vector<platform::WantedHotkey>& wanted);
    void reportTaken(const text::Json& answer);
    std::size_t numberOf(const platform::WantedHotkey& hotkey);
    void pressed(const text::Json& event);
    void report(const QString& line);

    async::MainLoop& loop_;
    platform::Log& log_;
    std::shared_ptr<ShellConnection> shell_;
    Handler handler_;
    std::vector<platform::WantedHotkey> wanted_;
    std::vector<platform::WantedHotkey> known_;  ///< by the number that the extension tells
    std::set<QString> reported_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
