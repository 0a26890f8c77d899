#pragma once

#include <array>

#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// Every text of the clone page but those of errors.
inline constexpr std::array<PageText, 23> cloneTexts{{
    {u"title", u"Clone", u"克隆"},
    {u"subtitle", u"Learn a system prompt and language style from a link or file. Applied to every response.",
     u"从链接或文件学习系统提示词与语言风格，应用于每次回复。"},

    {u"link", u"Link", u"链接"},
    {u"linkPlaceholder", u"https://profile-or-posts-url", u"https://用户主页或内容链接"},
    {u"learnFromLink", u"Learn from Link", u"从链接学习"},
    {u"invalidLink", u"Enter a valid link.", u"请输入有效链接。"},

    {u"file", u"File", u"文件"},
    {u"fileHint", u"Supports txt, md, pdf, rtf, html, json, csv", u"支持 txt、md、pdf、rtf、html、json、csv"},
    {u"noFile", u"No file selected", u"未选择文件"},
    {u"chooseFile", u"Choose File", u"选择文件"},
    {u"learnFromFile", u"Learn from File", u"从文件学习"},
    {u"chooseFileFirst", u"Choose a file first.", u"请先选择文件。"},
    {u"choiceCancelled", u"No file was chosen.", u"已取消选择文件。"},
    {u"documents", u"Documents", u"文档"},
    {u"allFiles", u"All files", u"所有文件"},

    {u"learning", u"Learning...", u"正在学习..."},
    {u"learned", u"Clone profile updated.", u"克隆信息已更新。"},

    {u"systemPrompt", u"System Prompt", u"系统提示词"},
    {u"noSystemPrompt", u"No system prompt learned yet", u"暂无已学习的系统提示词"},
    {u"languageStyle", u"Language Style", u"语言风格"},
    {u"noLanguageStyle", u"No language style learned yet", u"暂无已学习的语言风格"},
    {u"updated", u"Updated", u"更新时间"},
    {u"clear", u"Clear", u"清除"},
}};

}  // namespace tavrelon::ui
