#pragma once

#include <QDateTime>
#include <QLocale>
#include <chrono>

namespace tavrelon::ui {

/// A moment as the language of the pages writes it; empty where there is none.
inline QString dateText(const std::optional<std::chrono::system_clock::time_point>& date, bool isEnglish) {
    if (!date)
        return {};
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(date->time_since_epoch());
    const auto moment = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count());
    return isEnglish ? QLocale(QStringLiteral("en_US")).toString(moment, u"MMM d, yyyy 'at' h:mm AP")
                     : QLocale(QStringLiteral("zh_CN")).toString(moment, u"yyyy年M月d日 HH:mm");
}

}  // namespace tavrelon::ui
