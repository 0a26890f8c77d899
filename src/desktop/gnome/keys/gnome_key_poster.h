#pragma once

#include <atomic>
#include <expected>
#include <memory>

#include "desktop/applications/terminal_shortcuts.h"
#include "desktop/gnome/shell_connection.h"
#include "desktop/x11/keys/x11_keyboard.h"
#include "platform/key_poster.h"

namespace tavrelon::desktop {

/// Posts keys by our extension, on the user's own layouts, which GNOME's X server knows too. Command becomes Control,
/// but where the window in front takes another chord. Modifiers that the user holds would join what is posted, and
/// nobody else can let go of them: the shell is made to forget which keys are down, so nothing is given back. A chord
/// blocks until the window was told of it, at most for `ShellConnection::limit`.
class GnomeKeyPoster : public platform::KeyPoster {
 public:
    /// The error is a sentence for the log.
    static std::expected<std::unique_ptr<GnomeKeyPoster>, QString> open(std::shared_ptr<ShellConnection> shell,
                                                                        std::unique_ptr<ShortcutTranslator> shortcuts);
    ~GnomeKeyPoster() override;

    void press(keys::VirtualKey key, keys::Modifiers flags) override;
    bool isCompositionOpen() override { return state("isComposing"); }
    bool isKeyboardHeld() override { return state("isHeld"); }
    void putModifiersAside() override;
    void giveModifiersBack() override;

    /// How many keys were pressed so far; the clipboard tells by it who fetches because of one.
    const std::shared_ptr<std::atomic<std::uint64_t>>& presses() const { return presses_; }

 private:
    GnomeKeyPoster(std::shared_ptr<ShellConnection> shell, std::unique_ptr<ShortcutTranslator> shortcuts,
                   std::unique_ptr<X11Connection> layouts);

    text::Json codesOf(keys::VirtualKey key);
    bool state(const char* name);

    std::shared_ptr<ShellConnection> shell_;
    std::unique_ptr<ShortcutTranslator> shortcuts_;
    std::unique_ptr<X11Connection> layouts_;
    std::unique_ptr<const X11Keyboard> keyboard_;
    int aside_ = 0;
    std::shared_ptr<std::atomic<std::uint64_t>> presses_ = std::make_shared<std::atomic<std::uint64_t>>(0);
};

}  // namespace tavrelon::desktop
