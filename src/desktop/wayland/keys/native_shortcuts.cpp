#include "desktop/wayland/keys/native_shortcuts.h"

namespace tavrelon::desktop {

std::optional<KeyChord> NativeShortcuts::translate(KeyChord asked) {
    const bool isShortcut = asked.flags == keys::commandFlag &&
                            (asked.key == keys::keyC || asked.key == keys::keyV || asked.key == keys::keyA);
    const auto window = isShortcut ? front_() : std::nullopt;
    const auto terminal = window ? terminalShortcutsOf(window->name, window->instance) : std::nullopt;
    if (!terminal)
        return asked;
    if (asked.key == keys::keyC && terminal->copy == TerminalShortcuts::Copy::ByChord)
        return terminal->copyChord;
    if (asked.key == keys::keyV && terminal->paste == TerminalShortcuts::Paste::OfClipboard)
        return terminal->pasteChord;
    return std::nullopt;
}

platform::WindowKind nativeWindowKindOf(const QString& name, const QString& instance) {
    const auto shortcuts = terminalShortcutsOf(name, instance);
    // Nothing puts the answer where such a terminal takes it from.
    if (shortcuts && shortcuts->paste == TerminalShortcuts::Paste::OfPrimary)
        return platform::WindowKind::WithoutPaste;
    return windowKindOf(name, instance);
}

}  // namespace tavrelon::desktop
