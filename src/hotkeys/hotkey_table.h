#pragma once

#include <QStringView>
#include <optional>
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

/// The action that goes by this name on a command line.
std::optional<HotkeyAction> actionNamed(QStringView name);

enum class FrontWindow { OfAnotherApplication, OurOwn };

/// Whether the overlay asks something. Its two keys then count even where their switches are off, or it could not be
/// answered.
enum class Question { None, OnShow };

/// A hotkey that is wanted, and what its press is to do.
struct DeclaredHotkey {
    HotkeyAction action;
    platform::WantedHotkey hotkey;

    bool operator==(const DeclaredHotkey&) const = default;
};

/// The hotkeys that count at this moment; any other press is the application's. Where two have the same keys, the one
/// that stands first in the table has them.
std::vector<DeclaredHotkey> wantedHotkeys(const keys::HotkeySet& settings, const input::InputState& state,
                                          FrontWindow front, Question question = Question::None);

}  // namespace tavrelon::hotkeys
