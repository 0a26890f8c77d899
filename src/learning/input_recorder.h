#pragma once

#include <QString>

namespace tavrelon::learning {

/// Takes what the user wrote, to learn from it. Main thread; returns at once and never fails its caller.
class InputRecorder {
 public:
    virtual ~InputRecorder() = default;
    virtual void recordInput(const QString& text) = 0;
};

}  // namespace tavrelon::learning
