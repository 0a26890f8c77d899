#pragma once

#include <QStringList>
#include <cstdint>
#include <functional>
#include <vector>

#include "desktop/xkb/key_table.h"
#include "platform/hotkeys.h"

namespace tavrelon::desktop {

/// A key with modifiers as sway's configuration names it: by a symbol, in lower case, or by a code; the other is 0.
struct SwayCombination {
    std::uint32_t modifiers = 0;  ///< the real ones of xkb, bit 0 Shift to bit 7 Mod5
    xkb_keysym_t symbol = 0;
    std::uint32_t code = 0;
    bool operator==(const SwayCombination&) const = default;
};

/// What the user's configuration binds outside of modes. `include` gives the texts of the files that a pattern names.
std::vector<SwayCombination> combinationsBoundIn(const QString& configuration,
                                                 const std::function<QStringList(const QString& pattern)>& include);

/// One of sway's bindings that a hotkey takes.
struct SwayBinding {
    SwayCombination combination;
    QStringList tries;  ///< what to bind, up to the command; the first that sway takes
};

/// All of them: modifiers alone have one for each of their keys. Each holds for one layout, which lets it pass before
/// the user's own binding of the same keys and leaves that in place. Empty where no key is known for the hotkey.
std::vector<SwayBinding> swayBindingsOf(const platform::WantedHotkey& hotkey, int layouts);

/// The command that ends a binding which was made as in `tries`.
QString unbinding(const QString& binding);

/// Whether one of the combinations is the hotkey's.
bool isAmong(const std::vector<SwayCombination>& bound, const platform::WantedHotkey& hotkey);

}  // namespace tavrelon::desktop
