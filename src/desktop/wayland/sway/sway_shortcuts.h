#pragma once

#include "desktop/applications/terminal_shortcuts.h"
#include "desktop/wayland/sway/sway_workspace.h"

namespace tavrelon::desktop {

/// Gives the terminal in front the shortcuts that it knows. Where one copies or pastes the primary selection, nothing
/// is pressed; nor is select-all in any. Main thread.
class SwayShortcuts : public ShortcutTranslator {
 public:
    explicit SwayShortcuts(SwayWorkspace& workspace) : workspace_(workspace) {}

    std::optional<KeyChord> translate(KeyChord asked) override;

 private:
    SwayWorkspace& workspace_;
};

}  // namespace tavrelon::desktop
