#pragma once

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <bitset>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/xkb/key_table.h"
#include "keys/modifiers.h"

namespace tavrelon::desktop {

class X11Connection;

/// A set of the real modifiers of X, bit 0 Shift to bit 7 Mod5.
using ModifierMask = std::uint8_t;

inline constexpr ModifierMask shiftMask = 1;
inline constexpr ModifierMask lockMask = 2;
inline constexpr ModifierMask controlMask = 4;

struct XkbUnref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
using XkbContext = std::unique_ptr<xkb_context, XkbUnref>;
using XkbKeymap = std::unique_ptr<xkb_keymap, XkbUnref>;
using XkbState = std::unique_ptr<xkb_state, XkbUnref>;

/// What the keys of one keyboard map mean. A key is named by the symbol that it gives without modifiers, in the layout
/// in force if that symbol is known, otherwise in any other layout; its place names it only if no key has the symbol
/// of that place. A value that does not change: a new map makes a new one.
class X11Keyboard {
 public:
    explicit X11Keyboard(XkbKeymap keymap);

    /// The map of the session's keyboard, or nothing if the server does not give it.
    static std::unique_ptr<const X11Keyboard> fromServer(X11Connection& connection);

    xkb_keymap* keymap() const { return keymap_.get(); }

    /// The virtual key of a key while layout `group` is in force, `unnamedKey` for none.
    keys::VirtualKey virtualKey(KeyCode code, unsigned group) const;

    /// All keys that are this virtual key under some layout.
    std::vector<KeyCode> codesFor(keys::VirtualKey key) const;

    /// The keys that give the symbol of this virtual key, without modifiers, while layout `group` is in force.
    std::vector<KeyCode> codesLabelled(keys::VirtualKey key, unsigned group) const;

    /// Whether no label names this key, so that it goes by its place.
    bool goesByPlace(keys::VirtualKey key) const { return !labelled_.test(key); }

    /// The key to press for a virtual key while layout `group` is in force; nothing if no layout has it.
    std::optional<KeyCode> codeToPress(keys::VirtualKey key, unsigned group) const;

    /// The modifiers, locks included, that a key sets while it is down; 0 for an ordinary key.
    ModifierMask modifiersOf(KeyCode code) const { return modifiersByCode_[code]; }

    /// The flags that a key holds while it is down. Locks and level shifts hold none.
    keys::Modifiers flagsHeldBy(KeyCode code) const { return flagsOf(modifiersByCode_[code]); }
    keys::Modifiers flagsOf(ModifierMask mask) const;

    /// The modifiers of these flags, or nothing if no key gives one of them.
    std::optional<ModifierMask> maskOf(keys::Modifiers flags) const;

    /// A key that holds exactly this one flag.
    std::optional<KeyCode> modifierKey(keys::Modifiers flag) const;

    /// Caps Lock and Num Lock, wherever this map has them: they take no part in a hotkey.
    ModifierMask locks() const { return static_cast<ModifierMask>(lockMask | numLock_); }
    ModifierMask numLock() const { return numLock_; }

 private:
    static constexpr std::size_t codeCount = 256;
    using KeyNames = std::array<keys::VirtualKey, codeCount>;

    void readModifiers();
    void nameKeys();
    std::optional<keys::VirtualKey> labelOf(KeyCode code, unsigned group) const;
    keys::VirtualKey nameOf(KeyCode code, unsigned group) const;

    XkbKeymap keymap_;
    std::array<ModifierMask, codeCount> modifiersByCode_{};
    ModifierMask alt_ = 0;
    ModifierMask super_ = 0;
    ModifierMask numLock_ = 0;
    std::bitset<0x10000> labelled_;
    std::vector<KeyNames> namesByGroup_;
};

}  // namespace tavrelon::desktop
