#pragma once

#include <set>

#include "desktop/x11/x11_event_tap_delivery.h"
#include "desktop/x11/x11_event_tap_observer.h"
#include "desktop/x11/x11_event_tap_sequence.h"
#include "desktop/x11/x11_grab_window.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// Everything that a running tap does with the X server. Made on the main thread, then used by the tap's thread only.
class X11TapSession {
 public:
    /// How long a key waits for its verdict before it passes.
    static constexpr std::chrono::milliseconds verdictLimit{300};

    /// The connection outlives the session.
    static std::expected<std::unique_ptr<X11TapSession>, QString> open(async::MainLoop& clock,
                                                                       X11Connection& connection,
                                                                       std::shared_ptr<TapDelivery> delivery,
                                                                       std::shared_ptr<PostedKeys> posted,
                                                                       platform::Log& log);

    X11TapSession(const X11TapSession&) = delete;
    X11TapSession& operator=(const X11TapSession&) = delete;

    /// Lets the key that is held go its way, and all grabs with it.
    ~X11TapSession();

    void setHotkeys(std::vector<keys::HotkeyConfig> hotkeys);

    /// Handles all that is there: events, verdicts, limits that ran out.
    void work();

    /// When `work` is due even if nothing arrives.
    std::optional<async::Instant> deadline() const;

 private:
    struct HeldKey {
        std::shared_ptr<KeyOffer> offer;
        async::Instant deadline;
        KeyCode code = 0;
    };

    X11TapSession(async::MainLoop& clock, X11Connection& connection, KeyboardDevices devices,
                  std::shared_ptr<const X11Keyboard> keyboard, std::shared_ptr<TapDelivery> delivery,
                  std::shared_ptr<PostedKeys> posted, platform::Log& log);

    void drain(XPointer<xcb_generic_event_t> event);
    void handle(const xcb_generic_event_t& event);
    void expire();
    void seen(const DeviceKey& key, std::uint32_t time);
    void stoppedPress(const KeySequence::Stamp& stamp, KeySequence::Origin origin);
    void stoppedRelease(KeyCode code);
    void decide();
    std::optional<platform::TapVerdict> verdict();
    void drop(KeyCode code);
    void pass();
    void allow(std::uint8_t mode);

    void sendReady();
    void findDevices();
    void readKeyboard();
    void reportConflicts();

    async::MainLoop& clock_;
    X11Connection& connection_;
    KeyboardDevices devices_;
    std::shared_ptr<TapDelivery> delivery_;
    std::shared_ptr<PostedKeys> posted_;
    platform::Log& log_;

    X11KeyObserver observer_;
    X11GrabWindow window_;
    KeySequence sequence_;
    std::optional<HeldKey> held_;
    std::optional<KeyCode> grabKey_;  ///< the key that began the grab we are in
    std::set<KeyCode> dropped_;       ///< keys whose release belongs to a press that was dropped
    std::shared_ptr<KeyOffer> unanswered_;
    std::set<QString> reported_;
    bool focusMoved_ = false;
    bool devicesChanged_ = false;
    bool keyboardChanged_ = false;
};

}  // namespace tavrelon::desktop
