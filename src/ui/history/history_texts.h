#pragma once

#include <array>

#include "ui/dashboard/page_model.h"

/// Every text of the history page.
namespace tavrelon::ui {

inline constexpr std::array<PageText, 5> historyTexts{{
    {u"search", u"Search...", u"搜索..."},
    {u"applications", u"Applications", u"应用列表"},
    {u"clearAll", u"Clear All History", u"清除所有历史记录"},
    {u"noHistory", u"No history", u"暂无历史记录"},
    {u"chooseApplication", u"Choose an application to see its requests", u"选择一个应用查看对话"},
}};

struct HistoryText {
    QStringView english;
    QStringView chinese;

    QString in(text::Language language) const {
        return (language == text::Language::English ? english : chinese).toString();
    }
};

namespace history_texts {

inline constexpr HistoryText oneEntry{u"1 entry", u"1 条记录"};
inline constexpr HistoryText entries{u"%1 entries", u"%1 条记录"};

inline constexpr HistoryText reverted{u"Undone", u"已撤销"};
inline constexpr HistoryText edited{u"Edited", u"已编辑"};
inline constexpr HistoryText retried{u"Tried again: %1", u"重试 %1 次"};

inline constexpr HistoryText userLabel{u"You", u"你"};
inline constexpr HistoryText assistantLabel{u"AI", u"AI"};
inline constexpr HistoryText editedLabel{u"As you edited it", u"用户编辑后"};

/// What the history says for a picture that went to the clipboard. The picture itself stands in its place.
inline constexpr QStringView imageCopied = u"图片已复制到剪贴板";

}  // namespace history_texts
}  // namespace tavrelon::ui
