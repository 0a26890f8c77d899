#pragma once

#include <functional>

#include "platform/authorization_status.h"

namespace tavrelon::platform {

/// Something that the user may allow or not. Main thread.
struct Permission {
    std::function<AuthorizationStatus()> status;  ///< as things stand at the moment; answers at once
    std::function<void()> request;  ///< does what this desktop lets a program do for it; the status tells the outcome
};

struct Permissions {
    Permission accessibility;
    Permission screenRecording;
    Permission microphone;
    Permission shellExtension{};  ///< by which a session serves all windows; without functions where it needs none
};

}  // namespace tavrelon::platform
