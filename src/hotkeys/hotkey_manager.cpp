#include "hotkeys/hotkey_manager.h"

namespace tavrelon::hotkeys {

using namespace std::chrono_literals;
using input::InputState;
using keys::HotkeyConfig;
using platform::KeyEvent;
using Case = InputState::Case;

namespace {

/// For so long after the toggle hotkey the prompt box stays shut.
constexpr auto floatingInputSuppressionInterval = 200ms;

bool matches(const HotkeyConfig& hotkey, bool enabled, const KeyEvent& event) {
    return enabled && hotkey.matches(event.keyCode, event.modifierFlags);
}

void call(const HotkeyManager::Callback& callback) {
    if (callback)
        callback();
}

/// Of a voice hotkey: key code 0 stands for modifiers alone.
bool isModifiersOnly(const HotkeyConfig& hotkey) {
    return hotkey.keyCode == 0;
}

}  // namespace

TavrelonError TavrelonError::permissionDenied(PermissionType permission, const QString& reason) {
    return {permission, QStringLiteral("permissionDenied(accessibility): ") + reason};
}

void HotkeyManager::startListening() {
    if (!platform_.accessibility.isProcessTrusted())
        throw TavrelonError::permissionDenied(PermissionType::accessibility,
                                              QStringLiteral("this process may not watch the keyboard"));
    refreshTap();
    const auto started = platform_.eventTap.start([this](const KeyEvent& event) { return handle(event); });
    if (!started)
        throw TavrelonError::permissionDenied(PermissionType::accessibility, started.error().description);
    isListening_ = true;
    log("[Hotkey] Listening");
}

void HotkeyManager::stopListening() {
    if (isListening_)
        platform_.eventTap.stop();
    isListening_ = false;
}

void HotkeyManager::refreshTap() {
    std::vector<HotkeyConfig> withheld;
    const auto add = [&withheld](const HotkeyConfig& hotkey, bool enabled) {
        if (enabled)
            withheld.push_back(hotkey);
    };
    add(toggleAllHotkeysHotkey, toggleAllHotkeysHotkeyEnabled);
    if (hotkeysEnabled) {
        add(videoHotkey, videoHotkeyEnabled);
        add(toggleHotkey, toggleHotkeyEnabled);
        add(floatingInputHotkey, floatingInputHotkeyEnabled);
        add(quickAskHotkey, quickAskHotkeyEnabled);
        add(cancelHotkey, cancelHotkeyEnabled);
        add(autoReplyHotkey, autoReplyHotkeyEnabled);
        add(voiceHotkey, voiceHotkeyEnabled && !isModifiersOnly(voiceHotkey));
        add(voiceDictationHotkey, voiceDictationHotkeyEnabled && !isModifiersOnly(voiceDictationHotkey));
    }
    platform_.eventTap.setHotkeys(withheld);
}

platform::TapVerdict HotkeyManager::handle(const KeyEvent& event) {
    if (isRecordingKeys)
        return platform::TapVerdict::Pass;
    const auto handled = event.type == KeyEvent::Type::KeyDown ? handleKeyDown(event) : handleFlagsChanged(event);
    return handled == Handled::Yes ? platform::TapVerdict::Drop : platform::TapVerdict::Pass;
}

HotkeyManager::Handled HotkeyManager::handleKeyDown(const KeyEvent& event) {
    const auto machine = stateMachine.lock();
    if (!machine)
        return Handled::No;
    if (matches(toggleAllHotkeysHotkey, toggleAllHotkeysHotkeyEnabled, event)) {
        call(onToggleAllHotkeysPressed);
        return Handled::Yes;
    }
    if (hotkeysEnabled && handleHotkey(event, *machine) == Handled::Yes)
        return Handled::Yes;
    const auto state = machine->currentState();
    if (state == Case::listening || state == Case::recordingVideo)
        machine->captureTypedKey(event);
    return Handled::No;
}

/// The order decides where two hotkeys have the same keys: the first wins.
HotkeyManager::Handled HotkeyManager::handleHotkey(const KeyEvent& event, input::InputStateMachine& machine) {
    const auto state = machine.currentState();
    const bool isBusy = state == Case::listening || state == Case::listeningVoice || state == Case::processing;
    if (matches(videoHotkey, videoHotkeyEnabled, event) && !isBusy) {
        call(onVideoHotkeyPressed);
        return Handled::Yes;
    }
    if (matches(toggleHotkey, toggleHotkeyEnabled, event)) {
        handleToggle(machine);
        return Handled::Yes;
    }
    if (handlePromptBoxKeys(event, machine) == Handled::Yes || handleCancel(event, machine) == Handled::Yes)
        return Handled::Yes;
    if (matches(autoReplyHotkey, autoReplyHotkeyEnabled, event) && state.acceptsNewInput()) {
        call(onAutoReplyHotkeyPressed);
        return Handled::Yes;
    }
    if (!isModifiersOnly(voiceHotkey) && matches(voiceHotkey, voiceHotkeyEnabled, event)) {
        call(onVoiceHotkeyPressed);
        return Handled::Yes;
    }
    if (!isModifiersOnly(voiceDictationHotkey) && matches(voiceDictationHotkey, voiceDictationHotkeyEnabled, event)) {
        call(onVoiceDictationHotkeyPressed);
        return Handled::Yes;
    }
    return Handled::No;
}

void HotkeyManager::handleToggle(input::InputStateMachine& machine) {
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

HotkeyManager::Handled HotkeyManager::handlePromptBoxKeys(const KeyEvent& event,
                                                          const input::InputStateMachine& machine) {
    if (matches(floatingInputHotkey, floatingInputHotkeyEnabled, event)) {
        if (isWithinSuppression())
            return Handled::Yes;
        if (machine.currentState().acceptsNewInput()) {
            call(onFloatingInputHotkeyPressed);
            return Handled::Yes;
        }
    }
    // No test of the state here; in our own windows the key is an ordinary one.
    if (matches(quickAskHotkey, quickAskHotkeyEnabled, event) && !platform_.workspace.isOwnApplicationActive()) {
        if (!isWithinSuppression())
            call(onFloatingInputHotkeyPressed);
        return Handled::Yes;
    }
    return Handled::No;
}

HotkeyManager::Handled HotkeyManager::handleCancel(const KeyEvent& event, input::InputStateMachine& machine) {
    if (!matches(cancelHotkey, cancelHotkeyEnabled, event))
        return Handled::No;
    switch (machine.currentState().value) {
        case Case::listening:
        case Case::listeningVoice:
        case Case::recordingVideo:
            machine.cancelInput();
            return Handled::Yes;
        case Case::processing:
            machine.cancelProcessing();
            return Handled::Yes;
        case Case::idle:
        case Case::completed:
        case Case::error:
            break;  // the key works as usual in the focused application
    }
    return Handled::No;
}

HotkeyManager::Handled HotkeyManager::handleFlagsChanged(const KeyEvent& event) {
    if (!hotkeysEnabled)
        return Handled::No;
    auto handled = Handled::No;
    const auto follow = [&](const HotkeyConfig& hotkey, bool enabled, bool& latch, const char* line,
                            const Callback& callback) {
        const auto needed = hotkey.modifiers & keys::relevantModifierMask;
        if (!enabled || !isModifiersOnly(hotkey) || needed.isEmpty())
            return;
        const bool isDown = event.modifierFlags.contains(needed);
        if (isDown == latch)
            return;
        latch = isDown;
        handled = Handled::Yes;
        if (isDown) {
            log(line);
            call(callback);
        }
    };
    follow(voiceHotkey, voiceHotkeyEnabled, voiceModifiersPressed, "[Hotkey] Voice hotkey pressed (Control+Option)",
           onVoiceHotkeyPressed);
    follow(voiceDictationHotkey, voiceDictationHotkeyEnabled, voiceDictationModifiersPressed,
           "[Hotkey] Voice dictation hotkey pressed", onVoiceDictationHotkeyPressed);
    return handled;
}

bool HotkeyManager::isWithinSuppression() const {
    return lastToggleHotkeyTime_ &&
           platform_.mainLoop.now() - *lastToggleHotkeyTime_ < floatingInputSuppressionInterval;
}

}  // namespace tavrelon::hotkeys
