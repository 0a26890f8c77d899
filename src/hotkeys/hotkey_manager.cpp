#include "hotkeys/hotkey_manager.h"

#include <algorithm>

namespace tavrelon::hotkeys {

using namespace std::chrono_literals;
using input::InputState;
using platform::WantedHotkey;
using Case = InputState::Case;

namespace {

/// For so long after the toggle hotkey the prompt box stays shut.
constexpr auto floatingInputSuppressionInterval = 200ms;

void call(const HotkeyManager::Callback& callback) {
    if (callback)
        callback();
}

}  // namespace

TavrelonError TavrelonError::permissionDenied(PermissionType permission, const QString& reason) {
    return {permission, QStringLiteral("permissionDenied(accessibility): ") + reason};
}

void HotkeyManager::setStateMachine(const std::shared_ptr<input::InputStateMachine>& machine) {
    stateMachine_ = machine;
    stateSubscription_ = machine->bindableCurrentState().addNotifier([this] { refresh(); });
    refresh();
}

void HotkeyManager::setRecordingKeys(bool isRecording) {
    isRecordingKeys_ = isRecording;
    refresh();
}

void HotkeyManager::setOwnWindowActive(bool isActive) {
    isOwnWindowActive_ = isActive;
    refresh();
}

void HotkeyManager::setQuestionOnShow(bool isOnShow) {
    question_ = isOnShow ? Question::OnShow : Question::None;
    refresh();
}

void HotkeyManager::startListening() {
    if (!platform_.accessibility.isProcessTrusted())
        throw TavrelonError::permissionDenied(PermissionType::accessibility,
                                              QStringLiteral("this process may not watch the keyboard"));
    const auto started = platform_.hotkeys.start([this](const WantedHotkey& hotkey) { pressed(hotkey); });
    if (!started)
        throw TavrelonError::permissionDenied(PermissionType::accessibility, started.error().description);
    isListening_ = true;
    log("[Hotkey] Listening");
}

void HotkeyManager::stopListening() {
    if (isListening_)
        platform_.hotkeys.stop();
    isListening_ = false;
}

void HotkeyManager::refresh() {
    const auto machine = stateMachine_.lock();
    std::vector<DeclaredHotkey> wanted;
    if (machine && !(isRecordingKeys_ && isOwnWindowActive_))
        wanted = wantedHotkeys(*this, machine->currentState(), front(), question_);
    if (wanted == declared_)
        return;
    declared_ = std::move(wanted);
    std::vector<WantedHotkey> hotkeys;
    hotkeys.reserve(declared_.size());
    for (const auto& declared : declared_)
        hotkeys.push_back(declared.hotkey);
    platform_.hotkeys.declare(hotkeys);
}

FrontWindow HotkeyManager::front() const {
    return isOwnWindowActive_ ? FrontWindow::OurOwn : FrontWindow::OfAnotherApplication;
}

void HotkeyManager::trigger(HotkeyAction action) {
    const auto machine = stateMachine_.lock();
    if (!machine)
        return;
    // By the keys as they come, all of them switched on and none like another.
    const auto counting = wantedHotkeys(keys::HotkeySet(), machine->currentState(), front(), question_);
    if (std::ranges::find(counting, action, &DeclaredHotkey::action) != counting.end())
        perform(action, *machine);
}

void HotkeyManager::pressed(const WantedHotkey& hotkey) {
    const auto machine = stateMachine_.lock();
    // A press that was on its way while the state changed may mean nothing any more.
    const auto found = std::ranges::find(declared_, hotkey, &DeclaredHotkey::hotkey);
    if (machine && found != declared_.end())
        perform(found->action, *machine);
}

void HotkeyManager::perform(HotkeyAction action, input::InputStateMachine& machine) {
    switch (action) {
        case HotkeyAction::toggleAllHotkeys:
            call(onToggleAllHotkeysPressed);
            break;
        case HotkeyAction::video:
            call(onVideoHotkeyPressed);
            break;
        case HotkeyAction::toggle:
            toggle(machine);
            break;
        case HotkeyAction::floatingInput:
        case HotkeyAction::quickAsk:
            openPromptBox();
            break;
        case HotkeyAction::cancel:
            machine.cancelInput();
            break;
        case HotkeyAction::autoReply:
            call(onAutoReplyHotkeyPressed);
            break;
        case HotkeyAction::voice:
            log("[Hotkey] Voice hotkey pressed (Control+Option)");
            call(onVoiceHotkeyPressed);
            break;
        case HotkeyAction::voiceDictation:
            log("[Hotkey] Voice dictation hotkey pressed");
            call(onVoiceDictationHotkeyPressed);
            break;
    }
}

void HotkeyManager::toggle(input::InputStateMachine& machine) {
    lastToggleHotkeyTime_ = platform_.mainLoop.now();
    switch (machine.currentState().value) {
        case Case::idle:
        case Case::completed:
        case Case::error:
            machine.startTextInput();
            log("[Hotkey] Starting text listening");
            break;
        case Case::listening:
            machine.commitTextInput();
            log("[Hotkey] Committing text input");
            break;
        case Case::listeningVoice:
            log("[Hotkey] Ignored - voice mode active");
            break;
        case Case::recordingVideo:
            log("[Hotkey] Ignored - video mode active");
            break;
        case Case::processing:
            log("[Hotkey] Ignored while processing");
            call(onConfirmPressed);
            break;
    }
}

void HotkeyManager::openPromptBox() {
    if (!lastToggleHotkeyTime_ || platform_.mainLoop.now() - *lastToggleHotkeyTime_ >= floatingInputSuppressionInterval)
        call(onFloatingInputHotkeyPressed);
}

}  // namespace tavrelon::hotkeys
