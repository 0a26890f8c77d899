#pragma once

#include <expected>
#include <memory>

#include "desktop/applications/terminal_shortcuts.h"
#include "desktop/wayland/connection/wayland_connection.h"
#include "platform/key_poster.h"

namespace tavrelon::desktop {

/// Posts keys through a virtual keyboard with the keymap of a US keyboard, so that Control+V is that key whatever the
/// user's layout. Command becomes Control, but where the window in front takes another chord. Modifiers belong to one
/// keyboard: what the user holds on another does not mix with ours, and there is nothing to put aside. If the program
/// dies the compositor lets go of its keys.
class WaylandKeyPoster : public platform::KeyPoster {
 public:
    /// The referents must outlive the poster. The error is a sentence for the log.
    static std::expected<std::unique_ptr<WaylandKeyPoster>, QString> open(
        WaylandConnection& connection, std::unique_ptr<ShortcutTranslator> shortcuts);
    ~WaylandKeyPoster() override;

    void press(keys::VirtualKey key, keys::Modifiers flags) override;
    bool isCompositionOpen() override { return false; }
    bool isKeyboardHeld() override { return false; }
    void putModifiersAside() override {}
    void giveModifiersBack() override {}

    /// How many keys were pressed so far; the clipboard tells by it who fetches because of one.
    const std::shared_ptr<std::atomic<std::uint64_t>>& presses() const { return presses_; }

 private:
    WaylandKeyPoster(WaylandConnection& connection, std::unique_ptr<ShortcutTranslator> shortcuts)
        : connection_(connection), shortcuts_(std::move(shortcuts)) {}

    WaylandConnection& connection_;
    std::unique_ptr<ShortcutTranslator> shortcuts_;
    virtual_keyboard::Keyboard* keyboard_ = nullptr;
    std::shared_ptr<std::atomic<std::uint64_t>> presses_ = std::make_shared<std::atomic<std::uint64_t>>(0);
};

}  // namespace tavrelon::desktop
