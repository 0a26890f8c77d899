#include "keys/hotkey_config.h"

#include <gtest/gtest.h>

#include "keys/key_names.h"
#include "support/qt_gtest.h"

namespace tavrelon::keys {

TEST(HotkeyConfig, IsShownBySymbolsAndToldInWords) {
    const struct {
        VirtualKey key;
        Modifiers modifiers;
        ZeroKey zero;
        const char* symbols;
        const char* words;
    } cases[] = {
        {0, noModifiers, ZeroKey::None, "Not Set", "Not Set"},
        {0, noModifiers, ZeroKey::A, "A", "A"},
        {0, controlFlag | optionFlag, ZeroKey::None, "⌃⌥", "Ctrl+Alt"},
        {0, defaults::shiftOptionCommand, ZeroKey::A, "⌥⇧⌘A", "Shift+Alt+Super+A"},
        {37, controlFlag | optionFlag, ZeroKey::None, "⌃⌥L", "Ctrl+Alt+L"},
        {keySpace, controlFlag | Modifiers{0x1}, ZeroKey::None, "⌃Space", "Ctrl+Space"},
        {keyReturn, commandFlag, ZeroKey::A, "⌘↩", "Super+Return"},
        {126, shiftFlag, ZeroKey::A, "⇧↑", "Shift+Up"},
        {122, noModifiers, ZeroKey::A, "F1", "F1"},
        {111, commandFlag, ZeroKey::None, "⌘F12", "Super+F12"},
        {29, noModifiers, ZeroKey::None, "0", "0"},
        {200, optionFlag, ZeroKey::A, "⌥Key200", "Alt+Key200"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(displayName(each.key, each.modifiers, each.zero), QString::fromUtf8(each.symbols));
        EXPECT_EQ(plainName(each.key, each.modifiers, each.zero), QString::fromUtf8(each.words));
    }
    for (const VirtualKey writing : {keyA, keyGrave, keyBackspace, VirtualKey{29}, VirtualKey{123}})
        EXPECT_TRUE(isUsedInWriting(writing)) << writing;
    for (const VirtualKey other : {keyEscape, VirtualKey{122}, VirtualKey{200}})
        EXPECT_FALSE(isUsedInWriting(other)) << other;
}

TEST(HotkeyConfig, EveryBitSurvivesJson) {
    const HotkeyConfig config{37, Modifiers{0xF0000000001A0001}};
    const auto json = toJson(config);
    EXPECT_EQ(text::compactJson(json), R"({"keyCode":37,"modifiersRaw":17293822569104408577})");
    EXPECT_EQ(hotkeyConfigFrom(json), config);
    EXPECT_NE(config, (HotkeyConfig{37, Modifiers{0xF0000000001A0000}}));
    EXPECT_TRUE(config.matches(37, defaults::shiftOptionCommand));
    EXPECT_FALSE(config.matches(37, defaults::shiftOptionCommand | controlFlag));
}

}  // namespace tavrelon::keys
