#pragma once

#include "platform/application.h"

namespace tavrelon::testing {

class FakeApplication : public platform::Application {
 public:
    int aboutShown = 0;
    bool terminated = false;

    void orderFrontStandardAboutPanel() override { ++aboutShown; }
    void terminate() override { terminated = true; }
};

}  // namespace tavrelon::testing
