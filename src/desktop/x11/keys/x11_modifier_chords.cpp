#include "desktop/x11/keys/x11_modifier_chords.h"

#include <algorithm>
#include <iterator>

namespace tavrelon::desktop {

using keys::Modifiers;
using platform::WantedHotkey;
using Fires = WantedHotkey::Fires;

void ModifierChords::declare(const std::vector<WantedHotkey>& wanted) {
    chords_.clear();
    std::ranges::copy_if(wanted, std::back_inserter(chords_),
                         [](const WantedHotkey& hotkey) { return hotkey.fires != Fires::OnPress; });
}

std::optional<WantedHotkey> ModifierChords::find(Fires fires, Modifiers flags) const {
    const auto found = std::ranges::find_if(chords_, [&](const WantedHotkey& chord) {
        return chord.fires == fires && (chord.keys.modifiers & keys::relevantModifierMask) == flags;
    });
    return found == chords_.end() ? std::nullopt : std::optional(*found);
}

std::optional<WantedHotkey> ModifierChords::changed(const Change& change) {
    if (change.before.isEmpty()) {
        largest_ = keys::noModifiers;
        group_ = change.group;
        isClean_ = true;
    }
    if (!largest_.contains(change.after)) {
        largest_ = largest_ | change.after;
        completedAt_ = change.at;
        auto fired = isClean_ ? find(Fires::OnModifiersDown, change.after) : std::nullopt;
        if (fired)
            isClean_ = false;  // it is used up: its release means nothing
        return fired;
    }
    if (!change.after.isEmpty() || !isClean_ || change.group != group_ || change.at - completedAt_ >= longestHold)
        return std::nullopt;
    return find(Fires::OnModifiersReleased, largest_);
}

}  // namespace tavrelon::desktop
