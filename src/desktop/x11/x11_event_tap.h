#pragma once

#include <memory>

#include "async/main_loop.h"
#include "desktop/x11/x11_key_posts.h"
#include "platform/event_tap.h"
#include "platform/log.h"

namespace tavrelon::desktop {

class TapDelivery;
class X11TapThread;

/// The keyboard of an X session.
///
/// Only the keys of hotkeys are withheld, by grabs on the focused window; all others are watched as they go by. A key
/// can therefore not be dropped while another application holds the whole keyboard (menus, screen lockers) or the
/// window manager owns the combination: it is delivered all the same. The connection and its events live on a thread
/// of its own. If the server goes away the tap falls silent and says so in the log.
class X11EventTap : public platform::EventTap {
 public:
    /// `posted` is shared with the key poster, whose keys are left out.
    X11EventTap(async::MainLoop& loop, platform::Log& log, std::shared_ptr<PostedKeys> posted);
    ~X11EventTap() override;

    std::expected<void, platform::TapError> start(Handler handler) override;
    void stop() override;
    void setHotkeys(const std::vector<keys::HotkeyConfig>& hotkeys) override;

 private:
    async::MainLoop& loop_;
    platform::Log& log_;
    std::shared_ptr<PostedKeys> posted_;
    std::vector<keys::HotkeyConfig> hotkeys_;
    std::shared_ptr<TapDelivery> delivery_;
    std::unique_ptr<X11TapThread> thread_;
};

}  // namespace tavrelon::desktop
