#pragma once

#include "platform/application.h"

namespace tavrelon::testing {

class FakeApplication : public platform::Application {
 public:
    int aboutShown = 0;
    bool terminated = false;
    std::function<void(bool)> onActiveChanged;

    void orderFrontStandardAboutPanel(text::Language) override { ++aboutShown; }
    void terminate() override { terminated = true; }
    void setOnActiveChanged(std::function<void(bool)> changed) override { onActiveChanged = std::move(changed); }
};

}  // namespace tavrelon::testing
