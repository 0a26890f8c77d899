#pragma once

#include <memory>
#include <mutex>

#include "desktop/kwin/kwin_bus.h"
#include "desktop/wayland/connection/wayland_connection.h"
#include "desktop/xkb/key_table.h"

struct xkb_keymap;

namespace tavrelon::desktop {

/// The user's keyboard layouts, as the compositor tells them to every client. Main thread.
class KeyLayouts {
 public:
    /// The connection must outlive it.
    KeyLayouts(WaylandConnection& connection, std::shared_ptr<KWinBus> bus);
    KeyLayouts(const KeyLayouts&) = delete;
    KeyLayouts& operator=(const KeyLayouts&) = delete;
    ~KeyLayouts();

    /// The key that has the symbol in the layout in force, or else in another of the user's, or else on a US keyboard:
    /// as applications look for a shortcut. 0 where there is none.
    KeyCode codeOf(keys::VirtualKey key);

 private:
    struct Told {
        std::mutex mutex;
        std::shared_ptr<xkb_keymap> keymap;
        wl_keyboard* keyboard = nullptr;  ///< the Wayland thread's
    };

    std::uint32_t layoutInForce();

    WaylandConnection& connection_;
    std::shared_ptr<KWinBus> bus_;
    std::shared_ptr<Told> told_ = std::make_shared<Told>();
};

}  // namespace tavrelon::desktop
