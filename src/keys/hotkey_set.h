#pragma once

#include "keys/hotkey_config.h"

namespace tavrelon::keys {

/// The hotkeys that a user can change and switch off one by one.
struct HotkeySet {
    HotkeyConfig toggleHotkey = defaults::toggleHotkey;
    bool toggleHotkeyEnabled = true;
    HotkeyConfig voiceHotkey = defaults::voiceHotkey;
    bool voiceHotkeyEnabled = true;
    HotkeyConfig voiceDictationHotkey = defaults::voiceDictationHotkey;
    bool voiceDictationHotkeyEnabled = true;
    HotkeyConfig cancelHotkey = defaults::cancelHotkey;
    bool cancelHotkeyEnabled = true;
    HotkeyConfig autoReplyHotkey = defaults::autoReplyHotkey;
    bool autoReplyHotkeyEnabled = true;
    HotkeyConfig toggleAllHotkeysHotkey = defaults::toggleAllHotkeysHotkey;
    bool toggleAllHotkeysHotkeyEnabled = true;
    HotkeyConfig videoHotkey = defaults::videoHotkey;
    bool videoHotkeyEnabled = true;
    HotkeyConfig floatingInputHotkey = defaults::floatingInputHotkey;
    bool floatingInputHotkeyEnabled = true;
    HotkeyConfig quickAskHotkey = defaults::quickAskHotkey;  ///< always this key: only its switch is stored
    bool quickAskHotkeyEnabled = true;
    bool hotkeysEnabled = true;  ///< the master switch of all hotkeys

    bool operator==(const HotkeySet&) const = default;
};

}  // namespace tavrelon::keys
