#pragma once

#include <utility>

#include "platform/raw_keys.h"

namespace tavrelon::testing {

/// Keys that a test strikes in one of our windows.
class FakeRawKeys : public platform::RawKeys {
 public:
    void capture(Handler handler) override { handler_ = std::move(handler); }
    void release() override { handler_ = nullptr; }
    bool isCapturing() const { return static_cast<bool>(handler_); }

    /// True if the key was used, so that the window does not get it.
    bool press(keys::VirtualKey keyCode, keys::Modifiers flags = {}) {
        return give({platform::KeyEvent::Type::KeyDown, keyCode, flags, {}, false});
    }
    bool flagsChanged(keys::Modifiers flags) {
        return give({platform::KeyEvent::Type::FlagsChanged, 0, flags, {}, false});
    }

 private:
    bool give(const platform::KeyEvent& event) {
        const auto handler = handler_;
        return handler && handler(event);
    }

    Handler handler_;
};

}  // namespace tavrelon::testing
