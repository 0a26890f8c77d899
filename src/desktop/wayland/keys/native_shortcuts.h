#pragma once

#include <functional>

#include "desktop/applications/terminal_shortcuts.h"

namespace tavrelon::desktop {

/// Gives the terminal in front the shortcuts that it knows. Where one copies or pastes the primary selection, nothing
/// is pressed; nor is select-all in any. Main thread.
class NativeShortcuts : public ShortcutTranslator {
 public:
    /// The two names of a window, as of `terminalShortcutsOf`.
    struct Names {
        QString name;
        QString instance;
    };
    /// Of the window with the keyboard; absent where none has it.
    using Front = std::function<std::optional<Names>()>;

    explicit NativeShortcuts(Front front) : front_(std::move(front)) {}

    std::optional<KeyChord> translate(KeyChord asked) override;

 private:
    Front front_;
};

/// The kind of a window that pastes by those shortcuts.
platform::WindowKind nativeWindowKindOf(const QString& name, const QString& instance);

}  // namespace tavrelon::desktop
