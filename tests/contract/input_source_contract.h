#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "platform/input_source.h"

namespace tavrelon::testing {

/// A desktop on which the contract's tests choose the input method.
class InputSourceWorld {
 public:
    enum class Method { Keyboard, Composing };

    virtual ~InputSourceWorld() = default;
    virtual platform::InputSource& source() = 0;
    virtual void use(Method method) = 0;

    /// Asks in this turn of the main loop and in later ones until the answer is this.
    virtual bool answers(bool isActive) = 0;
};

using InputSourceWorldFactory = std::function<std::unique_ptr<InputSourceWorld>()>;

class InputSourceContract : public ::testing::TestWithParam<InputSourceWorldFactory> {
 public:
    std::unique_ptr<InputSourceWorld> world = GetParam()();
};

}  // namespace tavrelon::testing
