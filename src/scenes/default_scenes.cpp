#include "scenes/scene_config.h"

namespace tavrelon::scenes {

namespace {

SceneConfig scene(const char16_t* name, qint64 priority, QStringList appBundleIDs, OutputContract contract) {
    SceneConfig config;
    config.id = QUuid::createUuid();
    config.name = QString::fromUtf16(name);
    config.priority = priority;
    config.appBundleIDs = std::move(appBundleIDs);
    config.outputContract = std::move(contract);
    return config;
}

QString word(const char* text) {
    return QString::fromLatin1(text);
}

SceneConfig mailScene() {
    auto mail = scene(u"邮件回复", 100, {word("com.apple.mail")},
                      {.requiredFields = QStringList{word("greeting"), word("body"), word("closing")},
                       .lengthRange = LengthRange{50, 1000},
                       .tone = word("professional"),
                       .format = word("paragraph")});
    mail.windowTitleKeywords = {word("Re:"), QStringLiteral("回复:")};
    return mail;
}

}  // namespace

std::vector<SceneConfig> defaultScenes() {
    return {
        scene(u"Slack 消息", 100, {word("com.tinyspeck.slackmacgap")},
              {.lengthRange = LengthRange{10, 500}, .tone = word("casual"), .format = word("paragraph")}),
        mailScene(),
        scene(u"浏览器", 50,
              {word("com.apple.Safari"), word("com.google.Chrome"), word("org.mozilla.firefox"),
               word("com.microsoft.edgemac")},
              {}),
        scene(u"代码编辑", 100,
              {word("com.apple.dt.Xcode"), word("com.microsoft.VSCode"), word("com.sublimetext.4"),
               word("com.jetbrains.intellij")},
              {.format = word("code")}),
        scene(u"笔记", 80, {word("com.apple.Notes"), word("notion.id"), word("md.obsidian")},
              {.format = word("paragraph")}),
    };
}

}  // namespace tavrelon::scenes
