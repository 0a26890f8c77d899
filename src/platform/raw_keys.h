#pragma once

#include <functional>

#include "keys/modifiers.h"
#include "keys/virtual_keys.h"

namespace tavrelon::platform {

/// One change of the keyboard in a window of ours.
struct RawKey {
    enum class Type { Pressed, Released, ModifiersChanged };

    Type type = Type::Pressed;
    keys::VirtualKey keyCode = 0;
    keys::Modifiers modifierFlags;  ///< of ModifiersChanged: the flags after the change
};

/// The keys that our own windows get, before the windows make anything of them. Main thread.
class RawKeys {
 public:
    using Handler = std::function<void(const RawKey&)>;

    virtual ~RawKeys() = default;

    /// Hands each key to `handler`, in place of an earlier one, until `release`; the windows get none meanwhile, and as
    /// far as the desktop allows it, its own shortcuts wait. Once the window that had the keyboard loses it, the
    /// capture has ended and `left` is called. False, with nothing captured, if no window of ours has the keyboard.
    ///
    /// Keys that no hotkey can mean and repeats of a held key are not handed on.
    virtual bool capture(Handler handler, std::function<void()> left) = 0;

    /// Also from within the handler.
    virtual void release() = 0;
};

}  // namespace tavrelon::platform
