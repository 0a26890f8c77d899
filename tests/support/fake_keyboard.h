#pragma once

#include <optional>
#include <vector>

#include "platform/hotkeys.h"
#include "platform/key_observer.h"

namespace tavrelon::testing {

/// Who got a press.
enum class Taken { ByUs, ByApplication };

class FakeHotkeys : public platform::Hotkeys {
 public:
    std::expected<void, platform::HotkeysError> start(Handler handler) override;
    void stop() override { handler_ = nullptr; }
    void declare(const std::vector<platform::WantedHotkey>& wanted) override { wanted_ = wanted; }
    std::vector<keys::HotkeyConfig> heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) override;

    /// Tells the hotkey if it is wanted.
    Taken fire(const platform::WantedHotkey& hotkey);

    void failToStart(const QString& description) { startError_ = platform::HotkeysError{description}; }
    bool isRunning() const { return static_cast<bool>(handler_); }
    const std::vector<platform::WantedHotkey>& wanted() const { return wanted_; }
    bool wants(const keys::HotkeyConfig& hotkey) const;

    std::optional<keys::HotkeyConfig> heldByAnother;

 private:
    Handler handler_;
    std::vector<platform::WantedHotkey> wanted_;
    std::optional<platform::HotkeysError> startError_;
};

class FakeKeyObserver : public platform::KeyObserver {
 public:
    bool start(Calls calls) override;
    void stop() override { calls_.reset(); }

    void type(const platform::KeyEvent& event);

    /// The keyboard goes to another application.
    void leave();

    bool isRunning() const { return calls_.has_value(); }
    bool canObserve = true;

 private:
    std::optional<Calls> calls_;
};

/// A keyboard and the application under it, in one, behind both ports of keys. What is pressed is told at once.
struct FakeKeyboard {
    FakeHotkeys hotkeys;
    FakeKeyObserver observer;

    Taken press(keys::VirtualKey keyCode, keys::Modifiers flags = {}, const QString& characters = {});

    /// Modifiers alone, pressed and soon let go.
    Taken chord(keys::Modifiers modifiers);
};

}  // namespace tavrelon::testing
