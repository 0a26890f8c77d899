#pragma once

#include <optional>

#include "keys/hotkey_config.h"
#include "platform/raw_keys.h"

namespace tavrelon::ui {

/// Makes a hotkey of what is pressed until everything is let go: the largest set that was held, and of a key that is no
/// modifier the modifiers that it was pressed with.
class HotkeyRecording {
 public:
    /// What the hotkey may be made of. Where modifiers alone will do, key code 0 means none, so A cannot be had.
    enum class Content { Key, KeyOrModifiers };
    enum class Outcome { GoesOn, Taken, Left };

    explicit HotkeyRecording(Content content) : content_(content) {}

    /// `Left` at Escape; `Taken` when all is let go and there is a hotkey.
    Outcome take(const platform::RawKey& key);

    /// What would be taken if all were let go now.
    const std::optional<keys::HotkeyConfig>& hotkey() const { return hotkey_; }

    /// Whether the keys pressed last had the A that cannot be had.
    bool wasRefused() const { return wasRefused_; }

 private:
    void press(keys::VirtualKey key, keys::Modifiers modifiers);
    bool isLarger(keys::Modifiers modifiers) const;

    Content content_;
    std::optional<keys::HotkeyConfig> hotkey_;
    std::optional<keys::VirtualKey> heldKey_;
    bool hasKey_ = false;
    bool wasRefused_ = false;
};

}  // namespace tavrelon::ui
