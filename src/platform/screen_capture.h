#pragma once

namespace tavrelon::platform {

/// Pictures of the screen. Main thread.
class ScreenCapture {
 public:
    virtual ~ScreenCapture() = default;

    /// Whether screens can be captured at all.
    virtual bool preflightAccess() = 0;
};

}  // namespace tavrelon::platform
