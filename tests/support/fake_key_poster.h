#pragma once

#include <functional>
#include <vector>

#include "async/main_loop.h"
#include "platform/key_poster.h"

namespace tavrelon::testing {

/// Keeps what was typed, with its moment on the main loop.
class FakeKeyPoster : public platform::KeyPoster {
 public:
    struct Stroke {
        keys::VirtualKey key = 0;
        keys::Modifiers flags;
        async::Instant at;
        int asideDepth = 0;  ///< how many callers keep the held modifiers aside

        bool is(keys::VirtualKey wantedKey, keys::Modifiers wantedFlags) const {
            return key == wantedKey && flags == wantedFlags;
        }
    };

    explicit FakeKeyPoster(async::MainLoop& loop) : loop_(loop) {}

    void press(keys::VirtualKey key, keys::Modifiers flags) override;
    bool isCompositionOpen() override { return compositionOpen; }
    bool isKeyboardHeld() override { return keyboardHeld; }
    void putModifiersAside() override { ++asideDepth_; }
    void giveModifiersBack() override;

    const std::vector<Stroke>& strokes() const { return strokes_; }
    int count(keys::VirtualKey key, keys::Modifiers flags) const;
    int asideDepth() const { return asideDepth_; }
    void clear() { strokes_.clear(); }

    bool compositionOpen = false;
    bool keyboardHeld = false;

    /// Runs inside each `press`, after it was kept: what the focused application makes of the key.
    std::function<void(const Stroke&)> onPress;

 private:
    async::MainLoop& loop_;
    std::vector<Stroke> strokes_;
    int asideDepth_ = 0;
};

}  // namespace tavrelon::testing
