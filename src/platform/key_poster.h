#pragma once

#include <chrono>

#include "keys/modifiers.h"
#include "keys/virtual_keys.h"

namespace tavrelon::platform {

/// Types keys on the user's behalf into the focused window. Main thread.
class KeyPoster {
 public:
    /// How long a chord's key waits for its modifiers to be taken, as with fast fingers; callers count it as a part of
    /// their own wait.
    static constexpr std::chrono::milliseconds chordWait{4};

    virtual ~KeyPoster() = default;

    /// Presses and releases a key with these flags, resolved in the live keyboard layout. Command stands for the
    /// desktop's shortcut modifier. A key that no layout has is skipped silently. No key is left down. A chord blocks
    /// for `chordWait`.
    virtual void press(keys::VirtualKey key, keys::Modifiers flags) = 0;

    /// Whether an input method shows a word that is half composed; it would take posted keys for itself. False where
    /// that cannot be told.
    virtual bool isCompositionOpen() = 0;

    /// Whether a program holds the whole keyboard, as a screen's lock, a password prompt or an open menu does: posted
    /// keys would go there, whichever window is in front. False where that cannot be told.
    virtual bool isKeyboardHeld() = 0;

    /// Between these two, modifiers that the user still holds do not reach the target with the posted keys. Calls nest;
    /// the last one gives back what is still held. Use `ModifiersAside`.
    virtual void putModifiersAside() = 0;
    virtual void giveModifiersBack() = 0;
};

/// Keeps held modifiers aside for its lifetime.
class ModifiersAside {
 public:
    explicit ModifiersAside(KeyPoster& poster) : poster_(poster) { poster_.putModifiersAside(); }
    ModifiersAside(const ModifiersAside&) = delete;
    ModifiersAside& operator=(const ModifiersAside&) = delete;
    ~ModifiersAside() { poster_.giveModifiersBack(); }

 private:
    KeyPoster& poster_;
};

}  // namespace tavrelon::platform
