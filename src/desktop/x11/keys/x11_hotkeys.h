#pragma once

#include <memory>

#include "async/main_loop.h"
#include "desktop/x11/keys/x11_key_posts.h"
#include "platform/hotkeys.h"
#include "platform/key_observer.h"
#include "platform/log.h"

namespace tavrelon::desktop {

class X11KeyDelivery;
class X11KeyboardThread;

/// Hotkeys of an X session, by passive grabs on the window that has the focus. Hotkeys that something else holds are
/// named in the log. The connection lives on a thread of its own. If the server goes away no hotkey is told any more,
/// and the log says so.
class X11Hotkeys : public platform::Hotkeys {
 public:
    /// `posted` is shared with the key poster, whose keys are left out.
    X11Hotkeys(async::MainLoop& loop, platform::Log& log, std::shared_ptr<PostedKeys> posted);
    ~X11Hotkeys() override;

    std::expected<void, platform::HotkeysError> start(Handler handler) override;
    void stop() override;
    void declare(const std::vector<platform::WantedHotkey>& wanted) override;
    std::vector<keys::HotkeyConfig> heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) override;

    /// Only while it runs.
    void observe(platform::KeyObserver::Calls calls);

    /// The way of the keys while it runs; null otherwise.
    const std::shared_ptr<X11KeyDelivery>& delivery() const { return delivery_; }

 private:
    std::shared_ptr<void> makeWay(const keys::HotkeyConfig& chord);

    async::MainLoop& loop_;
    platform::Log& log_;
    std::shared_ptr<PostedKeys> posted_;
    std::vector<platform::WantedHotkey> wanted_;
    std::shared_ptr<X11KeyDelivery> delivery_;
    std::unique_ptr<X11KeyboardThread> thread_;
};

}  // namespace tavrelon::desktop
