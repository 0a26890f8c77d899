#pragma once

#include <expected>
#include <memory>

#include "desktop/applications/terminal_shortcuts.h"
#include "desktop/x11/keys/x11_xtest_modifiers.h"
#include "platform/key_poster.h"

namespace tavrelon::desktop {

/// Posts keys through the XTest extension. Command becomes Control, the shortcut modifier of this desktop, but where
/// the window in front takes another chord. If the server goes away, presses do nothing.
class X11KeyPoster : public platform::KeyPoster {
 public:
    /// `posted` is shared with the hotkeys, which leave our keys out. Without `shortcuts` every window gets the same
    /// chords. The error is a sentence for the log.
    static std::expected<std::unique_ptr<X11KeyPoster>, QString> open(
        async::MainLoop& loop, std::shared_ptr<PostedKeys> posted,
        std::unique_ptr<ShortcutTranslator> shortcuts = nullptr);

    void press(keys::VirtualKey key, keys::Modifiers flags) override;
    bool isCompositionOpen() override;
    bool isKeyboardHeld() override;
    void putModifiersAside() override;
    void giveModifiersBack() override;

    /// Once at the start of the only process that posts keys: lets go of modifiers that a run which was killed left
    /// down. Beside another such process it would break that one's chords.
    void letGoOfLeftOverModifiers() { modifiers_.releaseLeftOver(); }

    /// Before the process stops: nobody would let go of what was given back.
    void letGoOfModifiers() { modifiers_.letGo(); }

 private:
    X11KeyPoster(std::unique_ptr<X11XTest> xtest, std::unique_ptr<X11Connection> watch,
                 std::shared_ptr<PostedKeys> posted, std::unique_ptr<ShortcutTranslator> shortcuts)
        : posted_(std::move(posted)),
          shortcuts_(std::move(shortcuts)),
          xtest_(std::move(xtest)),
          modifiers_(*xtest_, std::move(watch)) {}

    void stroke(KeyCode code, const std::vector<KeyCode>& modifierKeys);
    void strokeLocked(KeyCode code, ModifierMask modifiers);

    std::shared_ptr<PostedKeys> posted_;
    std::unique_ptr<ShortcutTranslator> shortcuts_;
    std::unique_ptr<X11XTest> xtest_;
    X11HeldModifiers modifiers_;
    int asideDepth_ = 0;
};

}  // namespace tavrelon::desktop
