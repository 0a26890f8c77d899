#include "keys/hotkey_config.h"

#include <gtest/gtest.h>

#include "keys/key_names.h"
#include "support/qt_gtest.h"

namespace tavrelon::keys {

TEST(HotkeyConfig, ShowsModifiersInFixedOrderAndThenTheKey) {
    EXPECT_EQ(displayName(0, noModifiers), QStringLiteral("Not Set"));
    EXPECT_EQ(displayName(0, controlFlag | optionFlag), QStringLiteral("⌃⌥"));
    EXPECT_EQ(displayName(37, defaults::shiftOptionCommand), QStringLiteral("⌥⇧⌘L"));
    EXPECT_EQ(displayName(122, noModifiers), QStringLiteral("Key122"));
    EXPECT_EQ(displayName(122, commandFlag), QStringLiteral("⌘Key122"));
    EXPECT_EQ(displayName(keySpace, controlFlag | Modifiers{0x1}), QStringLiteral("⌃Space"));
    // The A of the auto-reply hotkey is not shown, though a direct call knows it.
    EXPECT_EQ(displayName(defaults::autoReplyHotkey.keyCode, defaults::autoReplyHotkey.modifiers),
              QStringLiteral("⌥⇧⌘"));
    EXPECT_EQ(keyDisplayName(0), QStringLiteral("A"));
    EXPECT_EQ(keyDisplayName(18), QStringLiteral("Key18"));
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

TEST(HotkeyConfig, DecodingRefusesWhatItCannotHold) {
    const auto decode = [](const char* json) { return hotkeyConfigFrom(text::parseJson(json)); };
    EXPECT_EQ(decode(R"({"modifiersRaw":0,"extra":[],"keyCode":65535})"), (HotkeyConfig{65535, noModifiers}));
    for (const char* bad : {R"({"keyCode":1})", R"({"modifiersRaw":1})", R"({"keyCode":65536,"modifiersRaw":0})",
                            R"({"keyCode":-1,"modifiersRaw":0})", R"({"keyCode":1,"modifiersRaw":-1})",
                            R"({"keyCode":"1","modifiersRaw":0})", R"({"keyCode":1.5,"modifiersRaw":0})",
                            R"({"keyCode":1,"modifiersRaw":18446744073709551616})", "[]"})
        EXPECT_THROW(decode(bad), text::JsonError) << bad;
}

}  // namespace tavrelon::keys
