#pragma once

#include <array>

#include "keys/key_names.h"
#include "persistence/app_settings.h"
#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// One row of the hotkeys page: its texts, and where its values live.
struct HotkeyRow {
    PageText title;
    PageText subtitle;
    keys::HotkeyConfig keys::HotkeySet::* key;  ///< in the settings as in the manager
    bool keys::HotkeySet::* isEnabled;
    double persistence::AppSettings::* silenceTimeout = nullptr;  ///< of the voice hotkeys

    bool isStored = true;  ///< else the key is always the same one

    /// The key of the master switch works while that is off.
    bool isAlwaysLive() const { return key == &keys::HotkeySet::toggleAllHotkeysHotkey; }

    /// Only voice hotkeys may consist of modifiers alone.
    bool allowModifiersOnly() const { return silenceTimeout != nullptr; }
    keys::ZeroKey zeroKey() const { return allowModifiersOnly() ? keys::ZeroKey::None : keys::ZeroKey::A; }
    bool hasKey(const keys::HotkeyConfig& hotkey) const { return hotkey.keyCode != 0 || !allowModifiersOnly(); }
};

/// Whether one press means both.
inline bool isSameHotkey(const HotkeyRow& one, const HotkeyRow& other, const keys::HotkeySet& set) {
    const auto& hotkey = set.*one.key;
    const auto& otherHotkey = set.*other.key;
    return hotkey.matches(otherHotkey.keyCode, otherHotkey.modifiers) &&
           one.hasKey(hotkey) == other.hasKey(otherHotkey);
}

/// From the top of the page to its bottom.
inline constexpr auto hotkeyRows = [] {
    using Settings = persistence::AppSettings;
    using Set = keys::HotkeySet;
    return std::array<HotkeyRow, 9>{{
        {{u"", u"Text Input", u"文本输入"},
         {u"", u"Toggle to listen/send", u"切换监听/发送"},
         &Set::toggleHotkey,
         &Set::toggleHotkeyEnabled},
        {{u"", u"Floating Input", u"悬浮输入框"},
         {u"", u"Show on-screen prompt box", u"显示屏幕输入框"},
         &Set::floatingInputHotkey,
         &Set::floatingInputHotkeyEnabled},
        {{u"", u"Hotkeys Toggle", u"快捷键开关"},
         {u"", u"Enable/disable all hotkeys", u"启用/禁用所有快捷键"},
         &Set::toggleAllHotkeysHotkey,
         &Set::toggleAllHotkeysHotkeyEnabled},
        {{u"", u"Video Capture (fixing)", u"视频录制（fixing）"},
         {u"", u"Record window video", u"录制窗口视频"},
         &Set::videoHotkey,
         &Set::videoHotkeyEnabled},
        {{u"", u"Voice Input", u"语音输入"},
         {u"", u"Press to start/stop", u"按下开始/结束"},
         &Set::voiceHotkey,
         &Set::voiceHotkeyEnabled,
         &Settings::voiceInputSilenceTimeoutSeconds},
        {{u"", u"Voice Dictation", u"语音听写"},
         {u"", u"Insert speech (no AI)", u"插入语音（无AI）"},
         &Set::voiceDictationHotkey,
         &Set::voiceDictationHotkeyEnabled,
         &Settings::voiceDictationSilenceTimeoutSeconds},
        {{u"", u"Auto Reply", u"自动回复"},
         {u"", u"Generate reply instantly", u"即时生成回复"},
         &Set::autoReplyHotkey,
         &Set::autoReplyHotkeyEnabled},
        {{u"", u"Interrupt", u"中断"},
         {u"", u"Stop AI reply", u"停止 AI 回复"},
         &Set::cancelHotkey,
         &Set::cancelHotkeyEnabled},
        {{u"", u"Quick Ask", u"快速提问"},
         {u"", u"Prompt box by the grave accent alone", u"单按反引号键打开输入框"},
         &Set::quickAskHotkey,
         &Set::quickAskHotkeyEnabled,
         nullptr,
         false},
    }};
}();

/// The rest of the page.
inline constexpr std::array<PageText, 16> hotkeysPageTexts{{
    {u"title", u"Hotkeys", u"快捷键"},
    {u"restore", u"Restore Defaults", u"恢复默认"},
    {u"master", u"Hotkeys Enabled", u"启用快捷键"},
    {u"masterHint", u"Global hotkey lock", u"全局快捷键锁定"},
    {u"enabled", u"Enabled", u"已启用"},
    {u"disabled", u"Disabled", u"已禁用"},
    {u"timeout", u"Timeout", u"超时"},
    {u"timeoutUnit", u"s", u"秒"},
    {u"timeoutTip", u"Auto stop after Xs of silence", u"静默 X 秒后自动结束"},
    {u"speech", u"Speech language", u"语音语言"},
    {u"speechHint", u"Of the recognisers that are installed", u"已安装的语音识别模型"},
    {u"recording", u"Press keys...", u"请按下按键..."},
    {u"refused", u"A cannot be the key of this hotkey", u"此快捷键不能使用 A 键"},
    {u"clash", u"Same keys as: %1", u"按键相同：%1"},
    {u"held", u"Another program holds these keys", u"此组合键已被其他程序占用"},
    {u"bare", u"No longer types anything elsewhere: add a modifier", u"在其他应用中将无法输入：请加上修饰键"},
}};

}  // namespace tavrelon::ui
