#pragma once

#include "platform/screens.h"

namespace tavrelon::testing {

/// Monitors that a test plugs in; the first is the main one. It starts with a single one of 1280 by 800 that has a task
/// bar of 30 below.
class FakeScreens : public platform::Screens {
 public:
    std::vector<platform::Screen> connected{{.frame = {0, 0, 1280, 800}, .visibleFrame = {0, 30, 1280, 770}}};
    QPointF mouse;

    std::vector<platform::Screen> screens() override { return connected; }
    std::optional<platform::Screen> mainScreen() override {
        return connected.empty() ? std::nullopt : std::optional(connected.front());
    }
    QPointF mouseLocation() override { return mouse; }
};

}  // namespace tavrelon::testing
