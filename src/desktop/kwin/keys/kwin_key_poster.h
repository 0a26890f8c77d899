#pragma once

#include <atomic>
#include <expected>
#include <memory>

#include "desktop/applications/terminal_shortcuts.h"
#include "desktop/kwin/keys/key_layouts.h"
#include "desktop/kwin/keys/own_posts.h"
#include "platform/key_poster.h"

namespace tavrelon::desktop {

/// Posts keys through KWin's fake input, on the user's own layout. Command becomes Control, but where the window in
/// front takes another chord. Nobody tells which modifiers the user holds, and posted keys mix with them: they are let
/// go of before, and the user's own release is then lost on KWin. So nothing is given back.
class KWinKeyPoster : public platform::KeyPoster {
 public:
    /// The connection must outlive the poster. The error is a sentence for the log.
    static std::expected<std::unique_ptr<KWinKeyPoster>, QString> open(WaylandConnection& connection,
                                                                       std::shared_ptr<KWinBus> bus,
                                                                       std::shared_ptr<OwnPosts> posts,
                                                                       std::unique_ptr<ShortcutTranslator> shortcuts);

    void press(keys::VirtualKey key, keys::Modifiers flags) override;
    bool isCompositionOpen() override { return false; }
    bool isKeyboardHeld() override { return false; }
    void putModifiersAside() override;
    void giveModifiersBack() override { --aside_; }

    /// How many keys were pressed so far; the clipboard tells by it who fetches because of one.
    const std::shared_ptr<std::atomic<std::uint64_t>>& presses() const { return presses_; }

 private:
    KWinKeyPoster(WaylandConnection& connection, std::shared_ptr<KWinBus> bus, std::shared_ptr<OwnPosts> posts,
                  std::unique_ptr<ShortcutTranslator> shortcuts)
        : connection_(connection),
          layouts_(connection, std::move(bus)),
          posts_(std::move(posts)),
          shortcuts_(std::move(shortcuts)) {}

    WaylandConnection& connection_;
    KeyLayouts layouts_;
    std::shared_ptr<OwnPosts> posts_;
    std::unique_ptr<ShortcutTranslator> shortcuts_;
    int aside_ = 0;
    std::shared_ptr<std::atomic<std::uint64_t>> presses_ = std::make_shared<std::atomic<std::uint64_t>>(0);
};

}  // namespace tavrelon::desktop
