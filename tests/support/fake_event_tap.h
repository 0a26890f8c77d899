#pragma once

#include <optional>
#include <vector>

#include "platform/event_tap.h"

namespace tavrelon::testing {

/// A keyboard and the application under it, in one: what is pressed goes to the handler, and what is not dropped is
/// kept as received by the application.
class FakeEventTap : public platform::EventTap {
 public:
    std::expected<void, platform::TapError> start(Handler handler) override;
    void stop() override;
    void setHotkeys(const std::vector<keys::HotkeyConfig>& hotkeys) override { hotkeys_ = hotkeys; }

    /// Presses a key and gives the handler's verdict, Pass if nobody listens. Whether the key then reaches the
    /// application is another matter: only keys that `setHotkeys` named can be dropped.
    platform::TapVerdict press(keys::VirtualKey keyCode, keys::Modifiers flags = {}, const QString& characters = {});

    /// As `press`, for a key that is held down and repeats.
    platform::TapVerdict repeat(keys::VirtualKey keyCode, keys::Modifiers flags = {}, const QString& characters = {});

    /// A modifier went down or up; `flags` are those after the change. The application always gets it.
    platform::TapVerdict flagsChanged(keys::Modifiers flags);

    void failToStart(const QString& description) { startError_ = platform::TapError{description}; }
    bool isRunning() const { return static_cast<bool>(handler_); }
    const std::vector<keys::HotkeyConfig>& hotkeys() const { return hotkeys_; }
    const std::vector<platform::KeyEvent>& receivedByApplication() const { return received_; }

 private:
    platform::TapVerdict deliver(const platform::KeyEvent& event);
    bool canDrop(const platform::KeyEvent& event) const;

    Handler handler_;
    std::vector<keys::HotkeyConfig> hotkeys_;
    std::vector<platform::KeyEvent> received_;
    std::optional<platform::TapError> startError_;
};

}  // namespace tavrelon::testing
