#include "desktop/x11/keys/x11_hotkey_grabs.h"

#include <algorithm>

namespace tavrelon::desktop {

using platform::WantedHotkey;

void X11HotkeyGrabs::setKeyboard(std::shared_ptr<const X11Keyboard> keyboard, unsigned group) {
    keyboard_ = std::move(keyboard);
    group_ = group;
}

void X11HotkeyGrabs::declare(std::vector<WantedHotkey> wanted) {
    wanted_ = std::move(wanted);
}

GrabSet X11HotkeyGrabs::grabsOf(const WantedHotkey& hotkey) const {
    return hotkey.fires == WantedHotkey::Fires::OnPress ? grabsFor(hotkey.keys, *keyboard_, group_) : GrabSet();
}

GrabSet X11HotkeyGrabs::grabs() const {
    GrabSet all;
    for (const auto& hotkey : wanted_)
        all.merge(grabsOf(hotkey));
    for (const auto& [code, mask] : held_)
        for (unsigned subset = mask;; subset = (subset - 1) & mask) {
            all.insert({code, static_cast<ModifierMask>(subset)});
            if (subset == 0)
                break;
        }
    return all;
}

bool X11HotkeyGrabs::released(KeyCode code, std::uint32_t time) {
    released_[code] = time;
    return held_.erase(code) > 0;
}

std::optional<WantedHotkey> X11HotkeyGrabs::pressed(const KeyGrab& key, std::uint32_t time, bool isRepeat) {
    if (isRepeat || held_.contains(key.code))
        return std::nullopt;
    const auto found =
        std::ranges::find_if(wanted_, [&](const WantedHotkey& hotkey) { return grabsOf(hotkey).contains(key); });
    if (found == wanted_.end())
        return std::nullopt;
    const auto released = released_.find(key.code);
    const bool isUpAgain = released != released_.end() && static_cast<std::int32_t>(released->second - time) >= 0;
    if (!isUpAgain)
        held_[key.code] = key.modifiers;
    return *found;
}

}  // namespace tavrelon::desktop
