#pragma once

#include <QDateTime>
#include <QLocale>
#include <chrono>
#include <optional>

namespace tavrelon::ui {

/// A moment in short, as the user's country writes it; empty where there is none.
inline QString dateText(const std::optional<std::chrono::system_clock::time_point>& date) {
    if (!date)
        return {};
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(date->time_since_epoch());
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(sinceEpoch.count()), QLocale::ShortFormat);
}

}  // namespace tavrelon::ui
