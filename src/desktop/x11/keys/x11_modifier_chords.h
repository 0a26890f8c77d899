#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "platform/hotkeys.h"

namespace tavrelon::desktop {

/// Recognises hotkeys that consist of modifiers alone. Longer shortcuts begin with the same modifiers, so such a hotkey
/// counts only if nothing else was pressed between and it was let go soon; and not if it switched the keyboard layout,
/// which is what some keyboards have these modifiers for. One thread.
class ModifierChords {
 public:
    /// Whoever holds them longer thinks of something else.
    static constexpr std::chrono::seconds longestHold{1};

    /// Keeps the chords among the hotkeys.
    void declare(const std::vector<platform::WantedHotkey>& wanted);

    struct Change {
        keys::Modifiers before;
        keys::Modifiers after;
        unsigned group = 0;            ///< the layout in force
        std::chrono::milliseconds at;  ///< by the server's clock
    };

    /// A modifier went down or up; gives the hotkey that fires by it.
    std::optional<platform::WantedHotkey> changed(const Change& change);

    /// Another key or a button was pressed, or the keyboard is somebody else's.
    void interrupt() { isClean_ = false; }

    bool isAnyDeclared() const { return !chords_.empty(); }

 private:
    std::optional<platform::WantedHotkey> find(platform::WantedHotkey::Fires fires, keys::Modifiers flags) const;

    std::vector<platform::WantedHotkey> chords_;
    keys::Modifiers largest_;
    std::chrono::milliseconds completedAt_{};
    unsigned group_ = 0;
    bool isClean_ = false;  ///< of the chord in progress
};

}  // namespace tavrelon::desktop
