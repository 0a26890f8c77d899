#pragma once

#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <functional>

namespace tavrelon::testing {

/// Runs the event loop for a time.
inline void letPass(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Runs the event loop until `condition` holds; false when `limit` passed without it.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        letPass(std::chrono::milliseconds(10));
    }
    return true;
}

}  // namespace tavrelon::testing
