#pragma once

#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// The texts of the shell.
inline constexpr std::array<PageText, 17> dashboardTexts{{
    {u"name", u"Tavrelon", u"Tavrelon"},
    {u"active", u"Active", u"已激活"},
    {u"hotkeysOff", u"Hotkeys off", u"快捷键已关闭"},
    {u"noModel", u"No model", u"未选择模型"},
    {u"noKeyboardAccess", u"No keyboard", u"无法使用键盘"},
    {u"language", u"中文", u"EN"},
    {u"languageTip", u"Switch to Chinese", u"切换到英文"},
    {u"help", u"Help", u"帮助"},
    {u"donate", u"Donate", u"赞助"},
    {u"donateTip", u"Support Tavrelon", u"支持 Tavrelon"},
    {u"helpTitle", u"How to Use Tavrelon", u"如何使用 Tavrelon"},
    {u"done", u"Done", u"完成"},
    {u"close", u"Close", u"关闭"},
    {u"undo", u"Undo", u"撤销"},
    {u"undoTip", u"Within ten seconds, also by Ctrl+Z", u"十秒内有效，也可按 Ctrl+Z"},
    {u"historyCleared", u"The history was cleared", u"历史记录已清除"},
    {u"hotkeysReset", u"The hotkeys are at their defaults", u"快捷键已恢复默认"},
}};

/// A section of the help sheet. Its items are fixed: they do not follow the user's hotkeys.
struct HelpText {
    QStringView english;
    QStringView chinese;
};
struct HelpSectionText {
    HelpText title;
    std::array<HelpText, 5> items;  ///< those that are empty are left out
};

inline constexpr std::array<HelpSectionText, 3> helpSections{{
    {{u"🚀 Quick Start", u"🚀 快速开始"},
     {{{u"Download and install Tavrelon", u"下载并安装 Tavrelon"},
       {u"Grant permissions (Accessibility, Screen Recording)", u"授予权限（辅助功能、屏幕录制）"},
       {u"Press hotkey to activate Tavrelon anywhere", u"按下快捷键在任意位置激活 Tavrelon"}}}},
    {{u"⌨️ Default Shortcuts", u"⌨️ 默认快捷键"},
     {{{u"⌘ + ⌥ + ⇧ + L — Text Input Mode", u"⌘ + ⌥ + ⇧ + L — 文本输入模式"},
       {u"⌃ + ⌥ — Voice Input Mode", u"⌃ + ⌥ — 语音输入模式"},
       {u"⌃ + ⇧ — Voice Dictation", u"⌃ + ⇧ — 语音听写"},
       {u"⌘ + ⌥ + ⇧ + A — Auto Reply", u"⌘ + ⌥ + ⇧ + A — 自动回复"},
       {u"Esc — Cancel operation", u"Esc — 取消操作"}}}},
    {{u"💡 Tips", u"💡 使用技巧"},
     {{{u"Type your prompt and press Enter to generate", u"输入提示词后按回车生成"},
       {u"Select text first for context-aware responses", u"先选中文本可获得上下文感知的回复"},
       {u"Use '画' or 'draw' to generate images", u"使用「画」或「draw」来生成图片"}}}},
}};

}  // namespace tavrelon::ui
