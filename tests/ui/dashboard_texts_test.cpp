// Every text of the shell and of the pages of settings, letter by letter, in both languages.
#include <gtest/gtest.h>

#include <QMetaProperty>

#include "ui/dashboard_desk.h"

namespace tavrelon::ui {

namespace {

struct Pair {
    QStringView english;
    QStringView chinese;
};

constexpr Pair pairs[] = {
    {u"Active", u"已激活"},
    {u"Switch to Chinese", u"切换到英文"},
    {u"Search settings", u"搜索设置"},
    {u"Help", u"帮助"},
    {u"Donate", u"赞助"},
    {u"Support Tavrelon", u"支持 Tavrelon"},
    {u"Vision Preference", u"视觉偏好"},
    {u"Prioritize speed or quality for vision models", u"选择视觉模型的速度或质量优先级"},
    {u"Speed", u"速度优先"},
    {u"Quality", u"质量优先"},
    {u"Fast model quality is currently lower.", u"高速模型目前效果不佳"},
    {u"Think", u"思考"},
    {u"Use /think for vision replies", u"视觉回复时使用 /think"},
    {u"Local Memory", u"本地记忆"},
    {u"Record phrases locally", u"本地记录短语"},
    {u"Share Improvements", u"分享改进"},
    {u"Help improve products", u"帮助改进产品"},
    {u"Image Prompt Enhancement", u"图片提示增强"},
    {u"Enhances prompts and blocks NSFW", u"增强提示词并屏蔽敏感内容"},
    {u"How to Use Tavrelon", u"如何使用 Tavrelon"},
    {u"Done", u"完成"},
    {u"Hotkeys", u"快捷键"},
    {u"Restore Defaults", u"恢复默认"},
    {u"Hotkeys Enabled", u"启用快捷键"},
    {u"Global hotkey lock", u"全局快捷键锁定"},
    {u"Enabled", u"已启用"},
    {u"Disabled", u"已禁用"},
    {u"Timeout", u"超时"},
    {u"s", u"秒"},
    {u"Auto stop after Xs of silence", u"静默 X 秒后自动结束"},
    {u"Settings", u"设置"},
    {u"Clone", u"克隆"},
    {u"Providers", u"服务提供商"},
    {u"History", u"历史记录"},
    {u"Permissions", u"权限"},
    {u"🚀 Quick Start", u"🚀 快速开始"},
    {u"Download and install Tavrelon", u"下载并安装 Tavrelon"},
    {u"Grant permissions (Accessibility, Screen Recording)", u"授予权限（辅助功能、屏幕录制）"},
    {u"Press hotkey to activate Tavrelon anywhere", u"按下快捷键在任意位置激活 Tavrelon"},
    {u"⌨️ Default Shortcuts", u"⌨️ 默认快捷键"},
    {u"⌘ + ⌥ + ⇧ + L — Text Input Mode", u"⌘ + ⌥ + ⇧ + L — 文本输入模式"},
    {u"⌃ + ⌥ — Voice Input Mode", u"⌃ + ⌥ — 语音输入模式"},
    {u"⌃ + ⇧ — Voice Dictation", u"⌃ + ⇧ — 语音听写"},
    {u"⌘ + ⌥ + ⇧ + A — Auto Reply", u"⌘ + ⌥ + ⇧ + A — 自动回复"},
    {u"Esc — Cancel operation", u"Esc — 取消操作"},
    {u"💡 Tips", u"💡 使用技巧"},
    {u"Type your prompt and press Enter to generate", u"输入提示词后按回车生成"},
    {u"Select text first for context-aware responses", u"先选中文本可获得上下文感知的回复"},
    {u"Use '画' or 'draw' to generate images", u"使用「画」或「draw」来生成图片"},
    {u"Text Input", u"文本输入"},
    {u"Toggle to listen/send", u"切换监听/发送"},
    {u"Floating Input", u"悬浮输入框"},
    {u"Show on-screen prompt box", u"显示屏幕输入框"},
    {u"Hotkeys Toggle", u"快捷键开关"},
    {u"Enable/disable all hotkeys", u"启用/禁用所有快捷键"},
    {u"Video Capture (fixing)", u"视频录制（fixing）"},
    {u"Record window video", u"录制窗口视频"},
    {u"Voice Input", u"语音输入"},
    {u"Press to start/stop", u"按下开始/结束"},
    {u"Voice Dictation", u"语音听写"},
    {u"Insert speech (no AI)", u"插入语音（无AI）"},
    {u"Auto Reply", u"自动回复"},
    {u"Generate reply instantly", u"即时生成回复"},
    {u"Interrupt", u"中断"},
    {u"Stop AI reply", u"停止 AI 回复"},
    {u"中文", u"EN"},
};

void collect(const QVariant& value, QStringList& texts) {
    if (value.typeId() == QMetaType::QVariantMap)
        for (const auto& each : value.toMap())
            collect(each, texts);
    else if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList)
        for (const auto& each : value.toList())
            collect(each, texts);
    else if (value.typeId() == QMetaType::QString)
        texts << value.toString();
}

/// All that the model says at the moment, in an order that does not depend on the language.
QStringList textsOf(const QObject& model) {
    QStringList texts;
    const auto& type = *model.metaObject();
    for (int index = QObject::staticMetaObject.propertyCount(); index < type.propertyCount(); ++index)
        collect(type.property(index).read(&model), texts);
    return texts;
}

class DashboardTextsTest : public ::testing::Test, public tavrelon::testing::DashboardDesk {
 public:
    QStringList textsIn(const char* language) {
        storage.changeSettings(
            [&](persistence::AppSettings& settings) { settings.appLanguage = QString::fromLatin1(language); });
        return textsOf(shell) + textsOf(general) + textsOf(hotkeys) + textsOf(privacy);
    }
};

TEST_F(DashboardTextsTest, EveryTextStandsInBothLanguages) {
    const auto english = textsIn("en");
    const auto chinese = textsIn("fr");
    ASSERT_EQ(english.size(), chinese.size());
    QStringList missing;
    for (const auto& pair : pairs) {
        bool found = false;
        for (qsizetype index = 0; index < english.size(); ++index)
            found |= english[index] == pair.english && chinese[index] == pair.chinese;
        if (!found)
            missing << QStringLiteral("%1 | %2").arg(pair.english, pair.chinese);
    }
    EXPECT_EQ(missing, QStringList());
}

TEST_F(DashboardTextsTest, ThePageOfPermissionsAndTheWaitingKeyCapAreEnglishInBoth) {
    hotkeys.toggleRecording(0);
    for (const char* language : {"en", "zh"}) {
        const auto texts = textsIn(language);
        for (const char* text :
             {"Permissions", "Accessibility", "Required for hotkeys", "Screen Recording", "Required for context",
              "Microphone", "Required for voice", "Granted", "Allow", "Press keys..."})
            EXPECT_TRUE(texts.contains(QString::fromLatin1(text))) << text << " in " << language;
    }
}

}  // namespace

}  // namespace tavrelon::ui
