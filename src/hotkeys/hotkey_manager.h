#pragma once

#include <QProperty>
#include <functional>
#include <memory>
#include <optional>

#include "hotkeys/hotkey_table.h"
#include "input/input_state_machine.h"
#include "platform/platform.h"
#include "text/localized_error.h"

namespace tavrelon::hotkeys {

/// The rights that the desktop may withhold.
enum class PermissionType { accessibility };

/// Why the keyboard cannot be had.
class TavrelonError : public text::LocalizedError {
 public:
    static TavrelonError permissionDenied(PermissionType permission, const QString& reason);
    PermissionType permission() const { return permission_; }

 private:
    TavrelonError(PermissionType permission, const QString& description)
        : LocalizedError(description), permission_(permission) {}
    PermissionType permission_;
};

/// Keeps the desktop's hotkeys at what the table wants, and does what a press is for. Main thread.
///
/// A change of the input's state or of the window in front declares anew in the same turn. Call `refresh` after
/// changing any of the hotkeys.
class HotkeyManager : public keys::HotkeySet {
 public:
    using Callback = std::function<void()>;

    explicit HotkeyManager(platform::Platform& platform) : platform_(platform) {}
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;
    ~HotkeyManager() { stopListening(); }

    /// The machine that hotkeys drive; nothing is wanted without one.
    void setStateMachine(const std::shared_ptr<input::InputStateMachine>& machine);

    /// While a new hotkey is being recorded in our own window, in front, no key is taken for an old one.
    void setRecordingKeys(bool isRecording);
    bool isRecordingKeys() const { return isRecordingKeys_; }

    /// Whether one of our own windows has the focus.
    void setOwnWindowActive(bool isActive);

    /// Whether a running request asks something that the toggle and cancel hotkeys answer.
    void setQuestionOnShow(bool isOnShow);

    Callback onVoiceHotkeyPressed;
    Callback onVoiceDictationHotkeyPressed;
    Callback onAutoReplyHotkeyPressed;
    Callback onToggleAllHotkeysPressed;
    Callback onVideoHotkeyPressed;
    Callback onConfirmPressed;  ///< the toggle hotkey while a request runs: yes, if it has asked something
    Callback onFloatingInputHotkeyPressed;

    /// Throws `TavrelonError`; no hotkey works then.
    void startListening();

    /// Lets go of all keys; `startListening` takes them again.
    void stopListening();
    bool isListening() const { return isListening_; }

    /// Declares what is wanted now.
    void refresh();

    /// Does what a press of the action's hotkey would do now, whatever its keys are and whether it is switched on. Does
    /// nothing in a state in which the hotkey does not count.
    void trigger(HotkeyAction action);

 private:
    FrontWindow front() const;
    void pressed(const platform::WantedHotkey& hotkey);
    void perform(HotkeyAction action, input::InputStateMachine& machine);
    void toggle(input::InputStateMachine& machine);
    void openPromptBox();
    void log(const char* line) { platform_.log.line(QString::fromLatin1(line)); }

    platform::Platform& platform_;
    std::weak_ptr<input::InputStateMachine> stateMachine_;
    QPropertyNotifier stateSubscription_;
    std::vector<DeclaredHotkey> declared_;
    std::optional<async::Instant> lastToggleHotkeyTime_;
    bool isListening_ = false;
    bool isRecordingKeys_ = false;
    bool isOwnWindowActive_ = false;
    Question question_ = Question::None;
};

}  // namespace tavrelon::hotkeys
