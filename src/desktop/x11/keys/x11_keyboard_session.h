#pragma once

#include <optional>
#include <set>

#include "desktop/x11/keys/x11_grab_window.h"
#include "desktop/x11/keys/x11_hotkey_grabs.h"
#include "desktop/x11/keys/x11_key_delivery.h"
#include "desktop/x11/keys/x11_keyboard_notices.h"
#include "desktop/x11/keys/x11_modifier_chords.h"
#include "desktop/x11/keys/x11_typed_keys.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// Everything that hotkeys and the observation of typed keys do with the X server. Made on the main thread, then used
/// by the keyboard's thread only.
///
/// Only hotkeys are taken out, by passive grabs that freeze nothing. At rest no other key but a modifier wakes this
/// thread; while typed keys are wanted, or a hotkey is held, the keyboards are watched beside the keys' way.
class X11KeyboardSession {
 public:
    /// The connection outlives the session.
    static std::expected<std::unique_ptr<X11KeyboardSession>, QString> open(X11Connection& connection,
                                                                            std::shared_ptr<X11KeyDelivery> delivery,
                                                                            std::shared_ptr<PostedKeys> posted,
                                                                            async::MainLoop& clock, platform::Log& log);

    X11KeyboardSession(const X11KeyboardSession&) = delete;
    X11KeyboardSession& operator=(const X11KeyboardSession&) = delete;
    ~X11KeyboardSession() { window_.letGo(); }

    void declare(const std::vector<platform::WantedHotkey>& wanted);

    /// Handles all that has arrived.
    void work();

 private:
    /// The server's time and key code: what tells two presses apart.
    struct Stamp {
        KeyCode code = 0;
        std::uint32_t time = 0;

        bool operator==(const Stamp&) const = default;
    };

    X11KeyboardSession(X11Connection& connection, KeyboardDevices devices, std::unique_ptr<X11UngrabbedKeys> ungrabbed,
                       std::shared_ptr<X11KeyDelivery> delivery, std::shared_ptr<PostedKeys> posted,
                       async::MainLoop& clock, platform::Log& log);

    void handle(const xcb_generic_event_t& event);
    void handleInput(const xcb_generic_event_t& event);
    void follow(const KeyMoment& moment);
    void struck(const KeyStroke& stroke);
    void modifierChanged(keys::Modifiers before, std::uint32_t time);
    void seen(const DeviceKey& key, const Stamp& stamp);
    void ordinaryPress(const DeviceKey& key, const Stamp& stamp);
    void grabbed(const KeyGrab& key, const Stamp& stamp, bool isRepeat);
    KeyGrab withoutLocks(KeyCode code, unsigned modifiers) const;
    bool went(const Stamp& stamp, bool isRepeat);

    void stateChanged(const KeyboardState& state);
    void followFocus();
    void watchAsNeeded();
    void setWatching(bool watching);
    void settle();
    void findDevices();
    bool readKeyboard();
    void applyGrabs();
    void reportConflicts();

    X11Connection& connection_;
    KeyboardDevices devices_;
    std::unique_ptr<X11UngrabbedKeys> ungrabbed_;
    std::shared_ptr<X11KeyDelivery> delivery_;
    std::shared_ptr<PostedKeys> posted_;
    async::MainLoop& clock_;
    platform::Log& log_;

    X11TypedKeys keys_;
    X11HotkeyGrabs grabs_;
    ModifierChords chords_;
    X11GrabWindow window_;
    std::optional<xcb_window_t> origin_;  ///< the window in front when typed keys began to be wanted
    xcb_window_t active_ = XCB_NONE;      ///< the window in front, while they are
    Stamp postedPress_;                   ///< the last press of ours
    Stamp wentPress_;                     ///< the last press that was found to go its ordinary way
    std::set<KeyGrab> probed_;            ///< which keys were tried whether somebody else holds them
    std::set<QString> reported_;
    std::optional<ModifierMask> modifiersNow_;  ///< as the server told last, until that is settled
    bool watching_ = false;
    bool watchingButtons_ = false;
    bool focusMoved_ = false;
    bool devicesChanged_ = false;
    bool keyboardChanged_ = false;
};

}  // namespace tavrelon::desktop
