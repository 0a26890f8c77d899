#pragma once

#include <utility>

#include "platform/raw_keys.h"

namespace tavrelon::testing {

/// Keys that a test strikes in one of our windows.
class FakeRawKeys : public platform::RawKeys {
 public:
    bool hasKeyboard = true;  ///< whether a window of ours has it

    bool capture(Handler handler, std::function<void()> left) override {
        if (hasKeyboard) {
            handler_ = std::move(handler);
            left_ = std::move(left);
        }
        return hasKeyboard;
    }
    void release() override {
        handler_ = nullptr;
        left_ = nullptr;
    }
    bool isCapturing() const { return static_cast<bool>(handler_); }

    /// Another window gets the keyboard.
    void leaveWindow() {
        const auto left = std::move(left_);
        release();
        if (left)
            left();
    }

    void press(keys::VirtualKey keyCode, keys::Modifiers held = {}) { give(Type::Pressed, keyCode, held); }
    void letGo(keys::VirtualKey keyCode, keys::Modifiers held = {}) { give(Type::Released, keyCode, held); }
    void hold(keys::Modifiers held) { give(Type::ModifiersChanged, 0, held); }

    /// Presses the modifiers together with the key and lets go of everything.
    void strike(keys::VirtualKey keyCode, keys::Modifiers modifiers = {}) {
        if (!modifiers.isEmpty())
            hold(modifiers);
        press(keyCode, modifiers);
        letGo(keyCode, modifiers);
        if (!modifiers.isEmpty())
            hold({});
    }

 private:
    using Type = platform::RawKey::Type;

    void give(Type type, keys::VirtualKey keyCode, keys::Modifiers flags) {
        if (const auto handler = handler_)
            handler({type, keyCode, flags});
    }

    Handler handler_;
    std::function<void()> left_;
};

}  // namespace tavrelon::testing
