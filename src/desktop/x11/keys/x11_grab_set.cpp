#include "desktop/x11/keys/x11_grab_set.h"

#include <algorithm>
#include <iterator>

namespace tavrelon::desktop {

GrabSet grabsFor(const keys::HotkeyConfig& hotkey, const X11Keyboard& keyboard, unsigned group) {
    const auto mask = keyboard.maskOf(hotkey.modifiers & keys::relevantModifierMask);
    if (!mask)
        return {};
    GrabSet grabs;
    for (const auto code :
         *mask == 0 ? keyboard.codesLabelled(hotkey.keyCode, group) : keyboard.codesFor(hotkey.keyCode))
        if (keyboard.modifiersOf(code) == 0)
            grabs.insert({code, *mask});
    return grabs;
}

GrabChange changeOf(const GrabSet& from, const GrabSet& to) {
    GrabChange change;
    std::ranges::set_difference(to, from, std::inserter(change.added, change.added.end()));
    std::ranges::set_difference(from, to, std::inserter(change.removed, change.removed.end()));
    return change;
}

std::array<std::uint32_t, 4> withLocks(ModifierMask modifiers, ModifierMask numLock) {
    const std::uint32_t plain = modifiers;
    return {plain, plain | lockMask, plain | numLock, plain | lockMask | numLock};
}

GrabSet withLocks(const GrabSet& grabs, ModifierMask numLock) {
    GrabSet combinations;
    for (const auto& key : grabs)
        for (const auto modifiers : withLocks(key.modifiers, numLock))
            combinations.insert({key.code, static_cast<ModifierMask>(modifiers)});
    return combinations;
}

}  // namespace tavrelon::desktop
