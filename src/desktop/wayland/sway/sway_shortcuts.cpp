#include "desktop/wayland/sway/sway_shortcuts.h"

namespace tavrelon::desktop {

std::optional<KeyChord> SwayShortcuts::translate(KeyChord asked) {
    const bool isShortcut = asked.flags == keys::commandFlag &&
                            (asked.key == keys::keyC || asked.key == keys::keyV || asked.key == keys::keyA);
    const auto window = isShortcut ? workspace_.focusedWindow() : std::nullopt;
    const auto terminal = window ? terminalShortcutsOf(window->name(), window->windowInstance) : std::nullopt;
    if (!terminal)
        return asked;
    if (asked.key == keys::keyC && terminal->copy == TerminalShortcuts::Copy::ByChord)
        return terminal->copyChord;
    if (asked.key == keys::keyV && terminal->paste == TerminalShortcuts::Paste::OfClipboard)
        return terminal->pasteChord;
    return std::nullopt;
}

}  // namespace tavrelon::desktop
