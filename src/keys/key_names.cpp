#include "keys/key_names.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace tavrelon::keys {

namespace {

/// A key, and what it is called where there is no room and where there is.
struct NamedKey {
    VirtualKey code;
    QStringView name;
    QStringView plainName = name;
};

struct NamedModifier {
    Modifiers flag;
    QStringView symbol;
};

// clang-format off
constexpr auto namedKeys = std::to_array<NamedKey>({
    {0, u"A"}, {1, u"S"}, {2, u"D"}, {3, u"F"}, {4, u"H"}, {5, u"G"}, {6, u"Z"}, {7, u"X"}, {8, u"C"}, {9, u"V"},
    {11, u"B"}, {12, u"Q"}, {13, u"W"}, {14, u"E"}, {15, u"R"}, {16, u"Y"}, {17, u"T"}, {31, u"O"}, {32, u"U"},
    {34, u"I"}, {35, u"P"}, {37, u"L"}, {38, u"J"}, {40, u"K"}, {45, u"N"}, {46, u"M"},
    {18, u"1"}, {19, u"2"}, {20, u"3"}, {21, u"4"}, {23, u"5"}, {22, u"6"}, {26, u"7"}, {28, u"8"}, {25, u"9"},
    {29, u"0"}, {24, u"="}, {27, u"-"}, {30, u"]"}, {33, u"["}, {39, u"'"}, {41, u";"}, {42, u"\\"}, {43, u","},
    {44, u"/"}, {47, u"."}, {50, u"`"}, {10, u"<"},
    {36, u"↩", u"Return"}, {48, u"⇥", u"Tab"}, {49, u"Space"}, {51, u"⌫", u"Backspace"}, {117, u"Delete"},
    {123, u"←", u"Left"}, {124, u"→", u"Right"}, {125, u"↓", u"Down"}, {126, u"↑", u"Up"},
    {115, u"Home"}, {119, u"End"}, {116, u"PgUp", u"Page Up"}, {121, u"PgDn", u"Page Down"}, {114, u"Insert"},
    {82, u"Num 0"}, {83, u"Num 1"}, {84, u"Num 2"}, {85, u"Num 3"}, {86, u"Num 4"}, {87, u"Num 5"}, {88, u"Num 6"},
    {89, u"Num 7"}, {91, u"Num 8"}, {92, u"Num 9"}, {65, u"Num ."}, {67, u"Num *"}, {69, u"Num +"}, {75, u"Num /"},
    {78, u"Num -"}, {81, u"Num ="}, {76, u"Num ↩", u"Num Enter"},
    {53, u"⎋", u"Escape"},
});

/// F1 to F20.
constexpr std::array<VirtualKey, 20> functionKeys{
    122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, 105, 107, 113, 106, 64, 79, 80, 90,
};
// clang-format on

constexpr std::array<NamedModifier, 4> symbols{{
    {controlFlag, u"⌃"},
    {optionFlag, u"⌥"},
    {shiftFlag, u"⇧"},
    {commandFlag, u"⌘"},
}};

constexpr std::array<NamedModifier, 4> words{{
    {controlFlag, u"Ctrl"},
    {shiftFlag, u"Shift"},
    {optionFlag, u"Alt"},
    {commandFlag, u"Super"},
}};

const NamedKey* named(VirtualKey keyCode) {
    const auto* found = std::ranges::find(namedKeys, keyCode, &NamedKey::code);
    return found == namedKeys.end() ? nullptr : found;
}

QString nameOf(VirtualKey keyCode, QStringView NamedKey::* name) {
    if (const auto* key = named(keyCode))
        return (key->*name).toString();
    const auto* function = std::ranges::find(functionKeys, keyCode);
    return function == functionKeys.end() ? QStringLiteral("Key%1").arg(keyCode)
                                          : QStringLiteral("F%1").arg(function - functionKeys.begin() + 1);
}

QString joined(VirtualKey keyCode, Modifiers modifiers, ZeroKey zero, const std::array<NamedModifier, 4>& flags,
               QStringView NamedKey::* name, QStringView separator) {
    QStringList parts;
    for (const auto& [flag, text] : flags)
        if (modifiers.contains(flag))
            parts << text.toString();
    if (keyCode != 0 || zero == ZeroKey::A)
        parts << nameOf(keyCode, name);
    return parts.isEmpty() ? QStringLiteral("Not Set") : parts.join(separator);
}

}  // namespace

QString keyDisplayName(VirtualKey keyCode) {
    return nameOf(keyCode, &NamedKey::name);
}

QString displayName(VirtualKey keyCode, Modifiers modifiers, ZeroKey zero) {
    return joined(keyCode, modifiers, zero, symbols, &NamedKey::name, {});
}

QString plainName(VirtualKey keyCode, Modifiers modifiers, ZeroKey zero) {
    return joined(keyCode, modifiers, zero, words, &NamedKey::plainName, u"+");
}

bool isUsedInWriting(VirtualKey keyCode) {
    return keyCode != keyEscape && named(keyCode);
}

}  // namespace tavrelon::keys
