#pragma once

#include <vector>

#include "platform/window.h"

namespace tavrelon::testing {

/// Windows that are only thought of; the last one that was made can be closed as a user would.
class FakeWindows : public platform::Windows {
 public:
    int made = 0;
    int open = 0;
    int broughtToFront = 0;
    platform::WindowDescription last;

    std::unique_ptr<platform::Window> create(const platform::WindowDescription& description,
                                             std::function<void()> onClose) override {
        ++made;
        last = description;
        onClose_ = std::move(onClose);
        return std::make_unique<FakeWindow>(*this);
    }

    void closeLast() {
        std::exchange(onClose_, [] {})();
    }

 private:
    struct FakeWindow : platform::Window {
        explicit FakeWindow(FakeWindows& owner) : windows(owner) { ++windows.open; }
        ~FakeWindow() override { --windows.open; }
        void makeKeyAndOrderFront() override { ++windows.broughtToFront; }
        FakeWindows& windows;
    };

    std::function<void()> onClose_ = [] {};
};

}  // namespace tavrelon::testing
