#pragma once

#include <QString>

#include "keys/modifiers.h"
#include "keys/virtual_keys.h"

namespace tavrelon::platform {

/// One key as the user struck it.
struct KeyEvent {
    enum class Type { KeyDown, FlagsChanged };

    Type type = Type::KeyDown;
    keys::VirtualKey keyCode = 0;
    keys::Modifiers modifierFlags;  ///< of FlagsChanged: the flags after the change
    QString characters;             ///< what the key types under the current layout and its dead keys; may be empty
    bool isRepeat = false;
};

}  // namespace tavrelon::platform
