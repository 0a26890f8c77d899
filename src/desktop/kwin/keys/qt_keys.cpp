#include "desktop/kwin/keys/qt_keys.h"

#include <algorithm>
#include <array>
#include <optional>

#include "desktop/xkb/key_table.h"

namespace tavrelon::desktop {

namespace {

struct HotkeyModifier {
    keys::Modifiers flag;
    int mask;
    int key;
};
constexpr HotkeyModifier hotkeyModifiers[] = {{keys::shiftFlag, Qt::ShiftModifier, Qt::Key_Shift},
                                              {keys::controlFlag, Qt::ControlModifier, Qt::Key_Control},
                                              {keys::optionFlag, Qt::AltModifier, Qt::Key_Alt},
                                              {keys::commandFlag, Qt::MetaModifier, Qt::Key_Meta}};

struct NamedKey {
    xkb_keysym_t symbol;
    Qt::Key key;
};
constexpr auto namedKeys = std::to_array<NamedKey>({{XKB_KEY_Escape, Qt::Key_Escape},
                                                    {XKB_KEY_Tab, Qt::Key_Tab},
                                                    {XKB_KEY_Return, Qt::Key_Return},
                                                    {XKB_KEY_BackSpace, Qt::Key_Backspace},
                                                    {XKB_KEY_Insert, Qt::Key_Insert},
                                                    {XKB_KEY_Delete, Qt::Key_Delete},
                                                    {XKB_KEY_Home, Qt::Key_Home},
                                                    {XKB_KEY_End, Qt::Key_End},
                                                    {XKB_KEY_Left, Qt::Key_Left},
                                                    {XKB_KEY_Up, Qt::Key_Up},
                                                    {XKB_KEY_Right, Qt::Key_Right},
                                                    {XKB_KEY_Down, Qt::Key_Down},
                                                    {XKB_KEY_Page_Up, Qt::Key_PageUp},
                                                    {XKB_KEY_Page_Down, Qt::Key_PageDown}});

std::optional<int> qtKeyOf(keys::VirtualKey key) {
    const auto label = labelOf(key);
    if (!label)
        return std::nullopt;
    const auto symbol = label->symbol;
    // Qt counts letters in upper case.
    if (symbol >= XKB_KEY_a && symbol <= XKB_KEY_z)
        return static_cast<int>(symbol - XKB_KEY_a) + Qt::Key_A;
    if (symbol >= XKB_KEY_space && symbol <= XKB_KEY_asciitilde)
        return static_cast<int>(symbol);
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F20)
        return static_cast<int>(symbol - XKB_KEY_F1) + Qt::Key_F1;
    const auto* named = std::ranges::find(namedKeys, symbol, &NamedKey::symbol);
    return named == namedKeys.end() ? std::nullopt : std::optional<int>(named->key);
}

}  // namespace

std::vector<int> qtKeysOf(const platform::WantedHotkey& hotkey) {
    int masks = 0;
    for (const auto& modifier : hotkeyModifiers)
        if (hotkey.keys.modifiers.contains(modifier.flag))
            masks |= modifier.mask;
    if (hotkey.fires == platform::WantedHotkey::Fires::OnPress) {
        const auto key = qtKeyOf(hotkey.keys.keyCode);
        return key ? std::vector<int>{masks | *key} : std::vector<int>();
    }
    std::vector<int> found;
    for (const auto& last : hotkeyModifiers)
        if (hotkey.keys.modifiers.contains(last.flag))
            found.push_back(masks | last.key);
    return found;
}

}  // namespace tavrelon::desktop
