#pragma once

#include <array>

#include "ui/dashboard/page_model.h"

/// Every text of the history page. The page is in Chinese whatever the language of the interface.
namespace tavrelon::ui {

inline constexpr std::array<PageText, 5> historyTexts{{
    {u"search", u"搜索...", u"搜索..."},
    {u"applications", u"应用列表", u"应用列表"},
    {u"clearAll", u"清除所有历史记录", u"清除所有历史记录"},
    {u"noHistory", u"暂无历史记录", u"暂无历史记录"},
    {u"chooseApplication", u"选择一个应用查看对话", u"选择一个应用查看对话"},
}};

namespace history_texts {

inline constexpr QStringView count = u"%1 条记录";

inline constexpr QStringView reverted = u"已撤销";
inline constexpr QStringView edited = u"已编辑";
inline constexpr QStringView retried = u"重试 %1 次";

inline constexpr QStringView userLabel = u"你";
inline constexpr QStringView assistantLabel = u"AI";
inline constexpr QStringView editedLabel = u"用户编辑后";

/// What the history says for a picture that went to the clipboard. The picture itself stands in its place.
inline constexpr QStringView imageCopied = u"图片已复制到剪贴板";

}  // namespace history_texts
}  // namespace tavrelon::ui
