#include "keys/key_names.h"

#include <array>
#include <utility>

namespace tavrelon::keys {

namespace {

using NamedKey = std::pair<VirtualKey, QStringView>;
using NamedModifier = std::pair<Modifiers, QChar>;

constexpr std::array<NamedKey, 32> keyNames{{
    {0, u"A"},  {1, u"S"},  {2, u"D"},  {3, u"F"},  {4, u"H"},      {5, u"G"},  {6, u"Z"},  {7, u"X"},
    {8, u"C"},  {9, u"V"},  {11, u"B"}, {12, u"Q"}, {13, u"W"},     {14, u"E"}, {15, u"R"}, {16, u"Y"},
    {17, u"T"}, {31, u"O"}, {32, u"U"}, {34, u"I"}, {35, u"P"},     {36, u"↩"}, {37, u"L"}, {38, u"J"},
    {40, u"K"}, {45, u"N"}, {46, u"M"}, {48, u"⇥"}, {49, u"Space"}, {50, u"`"}, {51, u"⌫"}, {53, u"⎋"},
}};

constexpr std::array<NamedModifier, 4> modifierSymbols{{
    {controlFlag, u'⌃'},
    {optionFlag, u'⌥'},
    {shiftFlag, u'⇧'},
    {commandFlag, u'⌘'},
}};

}  // namespace

QString keyDisplayName(VirtualKey keyCode) {
    for (const auto& [code, name] : keyNames)
        if (code == keyCode && !name.isEmpty())
            return name.toString();
    return QStringLiteral("Key%1").arg(keyCode);
}

QString displayName(VirtualKey keyCode, Modifiers modifiers) {
    QString name;
    for (const auto& [flag, symbol] : modifierSymbols)
        if (modifiers.contains(flag))
            name += symbol;
    if (keyCode != 0)
        name += keyDisplayName(keyCode);
    return name.isEmpty() ? QStringLiteral("Not Set") : name;
}

}  // namespace tavrelon::keys
