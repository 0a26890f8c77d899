#pragma once

namespace tavrelon::platform {

/// The keyboard's input source. Main thread, bounded.
class InputSource {
 public:
    virtual ~InputSource() = default;

    /// Whether a composing input method is in use; false when nothing can tell.
    virtual bool isInputMethodActive() = 0;
};

}  // namespace tavrelon::platform
