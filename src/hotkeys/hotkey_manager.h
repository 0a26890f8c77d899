#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "input/input_state_machine.h"
#include "keys/hotkey_set.h"
#include "platform/platform.h"
#include "text/localized_error.h"

namespace tavrelon::hotkeys {

/// The rights that the desktop may withhold.
enum class PermissionType { accessibility };

/// Why the keyboard cannot be watched.
class TavrelonError : public text::LocalizedError {
 public:
    static TavrelonError permissionDenied(PermissionType permission, const QString& reason);
    PermissionType permission() const { return permission_; }

 private:
    TavrelonError(PermissionType permission, const QString& description)
        : LocalizedError(description), permission_(permission) {}
    PermissionType permission_;
};

/// Recognises the hotkeys among all key events of the session, decides by the state of the input whether a press
/// counts, withholds the events that it used, and hands typed keys to an open text input. Main thread.
///
/// The hotkeys are read at each event, so that a change works from the next key. Call `refreshTap` after changing any
/// of them: the tap must know which keys it may have to withhold.
class HotkeyManager : public keys::HotkeySet {
 public:
    using Callback = std::function<void()>;

    explicit HotkeyManager(platform::Platform& platform) : platform_(platform) {}
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;
    ~HotkeyManager() { stopListening(); }

    /// While a new hotkey is being recorded no key is taken for an old one.
    bool isRecordingKeys = false;

    // Latches of the voice hotkeys that consist of modifiers alone: one call per press of the combination.
    bool voiceModifiersPressed = false;
    bool voiceDictationModifiersPressed = false;
    void clearLatches() { voiceModifiersPressed = voiceDictationModifiersPressed = false; }

    std::weak_ptr<input::InputStateMachine> stateMachine;
    Callback onVoiceHotkeyPressed;
    Callback onVoiceHotkeyReleased;  ///< declared only: voice hotkeys act on press
    Callback onVoiceDictationHotkeyPressed;
    Callback onVoiceDictationHotkeyReleased;  ///< declared only
    Callback onAutoReplyHotkeyPressed;
    Callback onToggleAllHotkeysPressed;
    Callback onVideoHotkeyPressed;
    Callback onConfirmPressed;  ///< the toggle hotkey while a request runs: yes, if it has asked something
    Callback onFloatingInputHotkeyPressed;

    /// Throws `TavrelonError`; no hotkey works then.
    void startListening();
    void stopListening();
    void refreshTap();

 private:
    enum class Handled { No, Yes };

    platform::TapVerdict handle(const platform::KeyEvent& event);
    Handled handleKeyDown(const platform::KeyEvent& event);
    Handled handleHotkey(const platform::KeyEvent& event, input::InputStateMachine& machine);
    Handled handlePromptBoxKeys(const platform::KeyEvent& event, const input::InputStateMachine& machine);
    Handled handleCancel(const platform::KeyEvent& event, input::InputStateMachine& machine);
    void handleToggle(input::InputStateMachine& machine);
    Handled handleFlagsChanged(const platform::KeyEvent& event);
    bool isWithinSuppression() const;
    void log(const char* line) { platform_.log.line(QString::fromLatin1(line)); }

    platform::Platform& platform_;
    bool isListening_ = false;
    std::optional<async::Instant> lastToggleHotkeyTime_;
};

}  // namespace tavrelon::hotkeys
