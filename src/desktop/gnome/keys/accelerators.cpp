#include "desktop/gnome/keys/accelerators.h"

#include <array>

#include "desktop/xkb/key_table.h"

namespace tavrelon::desktop {

namespace {

struct HotkeyModifier {
    keys::Modifiers flag;
    QString name;
    std::array<QString, 2> keys;
};

const std::array<HotkeyModifier, 4> hotkeyModifiers{
    {{keys::shiftFlag, QStringLiteral("<Shift>"), {QStringLiteral("Shift_L"), QStringLiteral("Shift_R")}},
     {keys::controlFlag, QStringLiteral("<Control>"), {QStringLiteral("Control_L"), QStringLiteral("Control_R")}},
     {keys::optionFlag, QStringLiteral("<Alt>"), {QStringLiteral("Alt_L"), QStringLiteral("Alt_R")}},
     {keys::commandFlag, QStringLiteral("<Super>"), {QStringLiteral("Super_L"), QStringLiteral("Super_R")}}}};

QString namesOf(keys::Modifiers flags) {
    QString names;
    for (const auto& modifier : hotkeyModifiers)
        if (flags.contains(modifier.flag))
            names += modifier.name;
    return names;
}

QString nameOf(xkb_keysym_t symbol) {
    std::array<char, 64> name{};
    return xkb_keysym_get_name(symbol, name.data(), name.size()) > 0 ? QString::fromUtf8(name.data()) : QString();
}

}  // namespace

std::vector<QString> acceleratorsOf(const platform::WantedHotkey& hotkey) {
    const auto flags = hotkey.keys.modifiers;
    if (hotkey.fires == platform::WantedHotkey::Fires::OnPress) {
        const auto label = labelOf(hotkey.keys.keyCode);
        const auto name = label ? nameOf(label->symbol) : QString();
        return name.isEmpty() ? std::vector<QString>() : std::vector{namesOf(flags) + name};
    }
    std::vector<QString> found;
    for (const auto& last : hotkeyModifiers)
        if (flags.contains(last.flag))
            for (const auto& key : last.keys)
                found.push_back(namesOf({flags.raw & ~last.flag.raw}) + key);
    return found;
}

}  // namespace tavrelon::desktop
