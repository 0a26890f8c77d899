#pragma once

#include <optional>

#include "desktop/x11/connection/x11_connection.h"
#include "desktop/x11/keys/x11_keyboard.h"
#include "desktop/x11/keys/x11_ungrabbed_keys.h"

namespace tavrelon::desktop {

/// Asks for a notice whenever the keyboard map of the session changes.
void watchKeyboardMap(X11Connection& connection);

/// Asks for a notice whenever another layout comes into force, or a modifier goes down or up.
void watchKeyboardState(X11Connection& connection);

/// Whether an event of the XKB extension says that the map is another one now.
bool isKeyboardMapNotice(const xcb_generic_event_t& event);

/// Another layout is in force, or a modifier went down or up.
struct KeyboardState {
    ModifierMask base = 0;  ///< the modifiers that are down
    unsigned group = 0;
    KeyMoment at;
};

/// What an event of the XKB extension says of it.
std::optional<KeyboardState> keyboardState(const xcb_generic_event_t& event);

/// The layout in force on the session's keyboard.
unsigned keyboardGroup(X11Connection& connection);

/// The modifiers that count as held without a key of theirs being down.
struct StickyModifiers {
    ModifierMask locked = 0;   ///< until they are unlocked
    ModifierMask latched = 0;  ///< for the next key
};
StickyModifiers stickyModifiers(X11Connection& connection);

}  // namespace tavrelon::desktop
