#include <gtest/gtest.h>

#include <cstring>

#include "ui/dashboard_desk.h"

namespace tavrelon::ui {

using keys::HotkeyConfig;

class HotkeysSettingsTest : public ::testing::Test, public tavrelon::testing::DashboardDesk {
 public:
    enum Row { textInput, floatingInput, togglesAll, video, voice, dictation, autoReply, interrupt, quickAsk };

    QVariant shown(int row, const char* what) const {
        return hotkeys.rows().at(row).toMap().value(QString::fromLatin1(what));
    }
    void settle() { desktop.loop.runUntilIdle(); }

    /// Each sign once to press and once more to let go: `^` Control, `~` Option, `+` Shift, `!` Escape, `a`, `x`.
    void strike(const char* signs) {
        std::string held;
        const auto isHeld = [&](char sign) { return held.find(sign) != std::string::npos; };
        for (const char* sign = signs; *sign != 0; ++sign) {
            const bool isPress = !isHeld(*sign);
            isPress ? held.push_back(*sign) : void(std::erase(held, *sign));
            const keys::Modifiers modifiers{(isHeld('^') ? keys::controlFlag.raw : 0) |
                                            (isHeld('~') ? keys::optionFlag.raw : 0) |
                                            (isHeld('+') ? keys::shiftFlag.raw : 0)};
            if (const auto* known = std::strchr("a!x", *sign)) {
                const keys::VirtualKey key = *known == 'a' ? keys::keyA : *known == '!' ? keys::keyEscape : 7;
                isPress ? keys.press(key, modifiers) : keys.letGo(key, modifiers);
            } else {
                keys.hold(modifiers);
            }
        }
    }
};

TEST_F(HotkeysSettingsTest, TheSpeechLanguageIsOneThatIsInstalled) {
    desktop.speech.installed = {QStringLiteral("de"), QStringLiteral("zh-CN")};
    hotkeys.appear();
    ASSERT_EQ(hotkeys.speechLanguages().size(), 2);
    EXPECT_EQ(hotkeys.speechLanguages().front().toMap().value(QStringLiteral("label")), QStringLiteral("Deutsch"));
    EXPECT_EQ(hotkeys.speechLocale(), QStringLiteral("zh-CN"));
    hotkeys.setSpeechLocale(QStringLiteral("de"));
    EXPECT_EQ(stored().speechLocale, QStringLiteral("de"));
    hotkeys.restoreDefaults();
    EXPECT_EQ(hotkeys.speechLocale(), QStringLiteral("zh-CN"));
}

TEST_F(HotkeysSettingsTest, TheLargestSetThatWasHeldIsTakenWhenAllIsLetGo) {
    const HotkeyConfig old{keys::keyL, keys::commandFlag};
    const HotkeyConfig controlOption{0, keys::controlFlag | keys::optionFlag};
    const HotkeyConfig controlX{7, keys::controlFlag};
    const struct {
        Row row;
        const char* struck;
        HotkeyConfig taken;
    } cases[] = {
        {voice, "^~^~", controlOption},
        {voice, "^^", {0, keys::controlFlag}},
        {voice, "^~~+^+", {0, keys::controlFlag | keys::shiftFlag}},
        {voice, "^xx^", controlX},
        {voice, "^x~~^x", controlX},
        {voice, "^aa^", old},

        {textInput, "^x^x", controlX},
        {textInput, "^~^~^xx^", controlX},
        {textInput, "^xx~aa~^", {0, keys::controlFlag | keys::optionFlag}},
        {textInput, "aa", {0, {}}},
        {textInput, "^~^~", old},
        {textInput, "!", old},
        {voice, "^!!^", {keys::keyEscape, keys::controlFlag}},
        {textInput, "^x", old},
    };
    for (const auto& each : cases) {
        storage.changeSettings([&](auto& settings) { settings.toggleHotkey = settings.voiceHotkey = old; });
        hotkeys.toggleRecording(each.row);
        strike(each.struck);
        settle();
        EXPECT_EQ(each.row == voice ? storage.settings().voiceHotkey : storage.settings().toggleHotkey, each.taken)
            << each.struck;
        hotkeys.disappear();
    }
}

TEST_F(HotkeysSettingsTest, ARecordingEndsWithItsWindowAndWithAnother) {
    keys.hasKeyboard = false;
    hotkeys.toggleRecording(textInput);
    EXPECT_FALSE(shown(textInput, "isRecording").toBool() || manager.isRecordingKeys());
    keys.hasKeyboard = true;
    const std::function<void()> ends[] = {
        [&] { hotkeys.toggleRecording(textInput); }, [&] { hotkeys.disappear(); }, [&] { hotkeys.restoreDefaults(); },
        [&] { keys.press(keys::keyEscape); },        [&] { keys.leaveWindow(); },
    };
    for (const auto& end : ends) {
        hotkeys.toggleRecording(textInput);
        EXPECT_TRUE(shown(textInput, "isRecording").toBool() && manager.isRecordingKeys());
        keys.hold(keys::controlFlag);
        end();
        EXPECT_FALSE(shown(textInput, "isRecording").toBool() || keys.isCapturing());
        desktop.loop.advance(std::chrono::seconds(1));
        EXPECT_FALSE(manager.isRecordingKeys());
        EXPECT_EQ(manager.toggleHotkey, keys::defaults::toggleHotkey);
    }
    hotkeys.toggleRecording(textInput);
    hotkeys.toggleRecording(interrupt);
    EXPECT_FALSE(shown(textInput, "isRecording").toBool()) << "one at a time";
    keys.strike(keys::keyL);
    settle();
    EXPECT_EQ(stored().cancelHotkey, (HotkeyConfig{keys::keyL, {}}));
    for (const int nowhere : {-1, 9, static_cast<int>(quickAsk)})
        hotkeys.toggleRecording(nowhere);
    EXPECT_FALSE(keys.isCapturing());
}

TEST_F(HotkeysSettingsTest, WhatIsUnwiseIsSaidUnderTheRow) {
    const auto warningWith = [&](Row row, keys::HotkeyConfig hotkey) {
        storage.changeSettings(
            [&](auto& settings) { (row == voice ? settings.voiceHotkey : settings.toggleHotkey) = hotkey; });
        hotkeys.appear();
        return shown(row, "warning").toString();
    };
    for (int row = 0; row < hotkeys.rowCount(); ++row)
        EXPECT_EQ(shown(row, "warning"), QString()) << row;
    const auto bare = hotkeys.texts()[QStringLiteral("bare")].toString();
    EXPECT_EQ(warningWith(textInput, keys::defaults::videoHotkey),
              QStringLiteral("Same keys as: Video Capture (fixing)"));
    EXPECT_EQ(shown(video, "warning"), QStringLiteral("Same keys as: Text Input"));
    hotkeys.setEnabled(video, false);
    EXPECT_EQ(shown(textInput, "warning").toString() + shown(video, "warning").toString(), QString());
    EXPECT_EQ(warningWith(textInput, {keys::keyGrave, {}}), QStringLiteral("Same keys as: Quick Ask\n") + bare);
    EXPECT_EQ(warningWith(textInput, {keys::keyA, keys::shiftFlag}), bare);
    EXPECT_EQ(warningWith(textInput, {122, {}}), QString()) << "nobody writes with F1";
    EXPECT_EQ(warningWith(textInput, {0, keys::defaults::voiceHotkey.modifiers}), QString()) << "A, not a bare chord";
    auto& held = desktop.keyboard.hotkeys.heldByAnother;
    held = {122, keys::optionFlag};
    EXPECT_EQ(warningWith(textInput, *held), QStringLiteral("Another program holds these keys"));
    held = keys::defaults::voiceHotkey;
    EXPECT_EQ(warningWith(voice, keys::defaults::voiceHotkey), QString()) << "no key that could be held";
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
    const auto earlier = storage.settings();
    hotkeys.restoreDefaults();
    auto expected = persistence::defaultSettings();
    expected.shareImprovements = true;
    EXPECT_EQ(stored(), expected);
    EXPECT_TRUE(manager.hotkeysEnabled && manager.toggleHotkeyEnabled);
    EXPECT_EQ(manager.videoHotkey, keys::defaults::videoHotkey);
    EXPECT_EQ(shownStates, (std::vector{false, true}));

    hotkeys.restoreDefaults();  // a second press has nothing to take back, and leaves the first one's offer
    desktop.loop.advance(std::chrono::milliseconds(9999));
    undoOffers.undo(app::Undoable::HotkeyReset);
    EXPECT_EQ(stored(), earlier);
    EXPECT_EQ(static_cast<const keys::HotkeySet&>(manager), earlier);
    EXPECT_FALSE(shownStates.back());
    hotkeys.restoreDefaults();
    desktop.loop.advance(std::chrono::seconds(10));
    undoOffers.undo(app::Undoable::HotkeyReset);
    EXPECT_EQ(stored(), expected) << "too late";
}

}  // namespace tavrelon::ui
