#pragma once

#include <functional>

#include "platform/key_event.h"

namespace tavrelon::platform {

/// The keys that our own windows get, before the windows make anything of them. Main thread.
class RawKeys {
 public:
    /// True if it used the key; the window does not get it then.
    using Handler = std::function<bool(const KeyEvent&)>;

    virtual ~RawKeys() = default;

    /// Hands each key to `handler` until `release`, in place of an earlier handler. As far as the desktop allows it,
    /// its own shortcuts wait meanwhile. Keys that no hotkey can mean are not handed on. `characters` stays empty.
    virtual void capture(Handler handler) = 0;

    /// Also from within the handler.
    virtual void release() = 0;
};

}  // namespace tavrelon::platform
