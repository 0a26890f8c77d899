#pragma once

#include <xkbcommon/xkbcommon-compose.h>

#include <QString>

#include "desktop/x11/keys/x11_keyboard.h"

namespace tavrelon::desktop {

/// The modifiers and the layout at the moment of a key, as its event tells them.
struct KeyState {
    ModifierMask base = 0;
    ModifierMask latched = 0;
    ModifierMask locked = 0;
    std::uint8_t baseGroup = 0;
    std::uint8_t latchedGroup = 0;
    std::uint8_t lockedGroup = 0;

    ModifierMask effective() const { return static_cast<ModifierMask>(base | latched | locked); }
};

/// Turns keys into the text that they type, dead keys and the compose key included. What an input method makes of
/// them is not seen here. One thread.
class X11KeyText {
 public:
    X11KeyText();

    void setKeyboard(const X11Keyboard& keyboard);

    /// The text of the next key that an application gets; empty for the first half of an accented letter.
    QString typed(KeyCode code, const KeyState& state);

    /// Gives up a half-typed accented letter.
    void reset();

    /// The layout in force.
    unsigned group(const KeyState& state);

 private:
    struct ComposeUnref {
        void operator()(xkb_compose_table* table) const { xkb_compose_table_unref(table); }
        void operator()(xkb_compose_state* state) const { xkb_compose_state_unref(state); }
    };

    void apply(const KeyState& state);
    QString plainText(KeyCode code) const;

    XkbContext context_;
    XkbState state_;
    std::unique_ptr<xkb_compose_table, ComposeUnref> table_;
    std::unique_ptr<xkb_compose_state, ComposeUnref> compose_;  ///< none where the locale has no compose table
};

}  // namespace tavrelon::desktop
