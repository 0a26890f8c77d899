#pragma once

#include "platform/input_source.h"

namespace tavrelon::testing {

class FakeInputSource : public platform::InputSource {
 public:
    bool active = false;
    bool isInputMethodActive() override { return active; }
};

}  // namespace tavrelon::testing
