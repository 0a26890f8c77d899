#pragma once

#include <vector>

#include "input/input_state.h"
#include "keys/hotkey_set.h"
#include "platform/hotkeys.h"

namespace tavrelon::hotkeys {

/// What a hotkey is for.
enum class HotkeyAction {
    toggleAllHotkeys,
    video,
    toggle,
    floatingInput,
    quickAsk,
    cancel,
    autoReply,
    voice,
    voiceDictation
};

enum class FrontWindow { OfAnotherApplication, OurOwn };

/// A hotkey that is wanted, and what its press is to do.
struct DeclaredHotkey {
    HotkeyAction action;
    platform::WantedHotkey hotkey;

    bool operator==(const DeclaredHotkey&) const = default;
};

/// The hotkeys that count at this moment; any other press is the application's. Where two have the same keys, the one
/// that stands first in the table has them.
std::vector<DeclaredHotkey> wantedHotkeys(const keys::HotkeySet& settings, const input::InputState& state,
                                          FrontWindow front);

}  // namespace tavrelon::hotkeys
