#include <gtest/gtest.h>

#include "ui/dashboard_desk.h"

namespace tavrelon::ui {

using keys::HotkeyConfig;

class HotkeysSettingsTest : public ::testing::Test, public tavrelon::testing::DashboardDesk {
 public:
    enum Row { textInput, floatingInput, togglesAll, video, voice, dictation, autoReply, interrupt };

    QVariant shown(int row, const char* what) const {
        return hotkeys.rows().at(row).toMap().value(QString::fromLatin1(what));
    }
    void settle() { desktop.loop.runUntilIdle(); }
};

TEST_F(HotkeysSettingsTest, ARecordedKeyIsStoredAndInForceATurnLater) {
    manager.startListening();
    hotkeys.toggleRecording(autoReply);
    EXPECT_EQ(shown(autoReply, "key"), QStringLiteral("Press keys..."));
    store.onWrite = [&] { EXPECT_EQ(manager.autoReplyHotkey, keys::defaults::autoReplyHotkey); };
    EXPECT_FALSE(keys.flagsChanged(keys::commandFlag)) << "only voice hotkeys consist of modifiers";
    EXPECT_TRUE(keys.press(40, keys::commandFlag | keys::Modifiers{0x10000}));
    EXPECT_EQ(manager.autoReplyHotkey, keys::defaults::autoReplyHotkey);
    settle();
    store.onWrite = [] {};
    const HotkeyConfig recorded{40, keys::commandFlag};
    EXPECT_EQ(manager.autoReplyHotkey, recorded);
    EXPECT_EQ(stored().autoReplyHotkey, recorded);
    EXPECT_EQ(shown(autoReply, "key"), QStringLiteral("⌘K"));
    EXPECT_FALSE(keys.isCapturing());
}

TEST_F(HotkeysSettingsTest, EscapeAndKeysWithoutModifiersAndKeysInUseAreTaken) {
    const HotkeyConfig taken[] = {{keys::keyEscape, {}}, {keys::keyA, {}}, keys::defaults::toggleHotkey};
    for (const auto& key : taken) {
        hotkeys.toggleRecording(floatingInput);
        EXPECT_TRUE(keys.press(key.keyCode, key.modifiers));
        settle();
        EXPECT_EQ(manager.floatingInputHotkey, key);
    }
}

TEST_F(HotkeysSettingsTest, TheFirstModifierIsAVoiceHotkey) {
    hotkeys.toggleRecording(voice);
    EXPECT_FALSE(keys.flagsChanged({}));
    EXPECT_TRUE(keys.flagsChanged(keys::controlFlag));
    settle();
    EXPECT_FALSE(keys.flagsChanged(keys::controlFlag | keys::optionFlag));
    settle();
    EXPECT_EQ(stored().voiceHotkey, (HotkeyConfig{0, keys::controlFlag}));
    EXPECT_EQ(manager.voiceHotkey, stored().voiceHotkey);
}

TEST_F(HotkeysSettingsTest, ASecondPressKeepsTheOldKeyAndLeavingThePageToo) {
    hotkeys.toggleRecording(textInput);
    hotkeys.toggleRecording(interrupt);
    EXPECT_TRUE(shown(textInput, "isRecording").toBool() && shown(interrupt, "isRecording").toBool());
    keys.press(keys::keyL);
    settle();
    EXPECT_EQ(stored().cancelHotkey, (HotkeyConfig{keys::keyL, {}})) << "the one that began last gets the key";
    EXPECT_TRUE(shown(textInput, "isRecording").toBool());
    hotkeys.toggleRecording(textInput);
    EXPECT_FALSE(keys.isCapturing());
    hotkeys.toggleRecording(textInput);
    hotkeys.disappear();
    EXPECT_FALSE(keys.press(keys::keyL));
    EXPECT_FALSE(shown(textInput, "isRecording").toBool());
    EXPECT_EQ(stored().toggleHotkey, keys::defaults::toggleHotkey);
    for (const int nowhere : {-1, 8})
        hotkeys.toggleRecording(nowhere);
    EXPECT_FALSE(keys.isCapturing());
}

TEST_F(HotkeysSettingsTest, TimeOutsAreClampedAndWhatIsNoNumberChangesNothing) {
    const struct {
        const char* typed;
        double stored;
        const char* shown;
    } cases[] = {
        {"0.1", 0.5, "0.5"}, {"45", 30, "30"},       {"2,5", 2.5, "2.5"}, {" 3 ", 3, "3"},      {"-1", 0.5, "0.5"},
        {"1e3", 30, "30"},   {"seven", 30, "30"},    {"", 30, "30"},      {"nan", 30, "30"},    {"1e999", 30, "30"},
        {"4 5", 30, "30"},   {"０．７", 0.7, "0.7"}, {"inf", 0.7, "0.7"}, {"0x10", 0.7, "0.7"},
    };
    for (const auto& each : cases) {
        hotkeys.setTimeout(dictation, QString::fromUtf8(each.typed));
        EXPECT_EQ(storage.settings().voiceDictationSilenceTimeoutSeconds, each.stored) << each.typed;
        EXPECT_EQ(shown(dictation, "timeout"), QString::fromUtf8(each.shown)) << each.typed;
    }
    EXPECT_EQ(stored().voiceDictationSilenceTimeoutSeconds, 0.7);
    EXPECT_EQ(stored().voiceInputSilenceTimeoutSeconds, 2);
    hotkeys.setTimeout(textInput, QStringLiteral("7"));
    EXPECT_EQ(shown(textInput, "timeout"), QString());
}

TEST_F(HotkeysSettingsTest, SwitchesWorkAtOnceAndTheDefaultsTouchNothingElse) {
    manager.startListening();
    hotkeys.setEnabled(textInput, false);
    EXPECT_FALSE(manager.toggleHotkeyEnabled || stored().toggleHotkeyEnabled);
    hotkeys.setHotkeysEnabled(false);
    EXPECT_FALSE(manager.hotkeysEnabled || stored().hotkeysEnabled);

    storage.changeSettings([](persistence::AppSettings& settings) {
        settings.videoHotkey = {1, {}};
        settings.voiceInputSilenceTimeoutSeconds = 9;
        settings.shareImprovements = true;
    });
    hotkeys.restoreDefaults();
    auto expected = persistence::defaultSettings();
    expected.shareImprovements = true;
    EXPECT_EQ(stored(), expected);
    EXPECT_TRUE(manager.hotkeysEnabled && manager.toggleHotkeyEnabled);
    EXPECT_EQ(manager.videoHotkey, keys::defaults::videoHotkey);
    EXPECT_EQ(shownStates, (std::vector{false, true}));
}

}  // namespace tavrelon::ui
