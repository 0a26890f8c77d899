#pragma once

#include <QElapsedTimer>
#include <QThread>
#include <chrono>
#include <functional>

namespace tavrelon::testing {

/// Polls until `condition` holds; false when `limit` passed without it.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (std::chrono::milliseconds(timer.elapsed()) > limit)
            return false;
        QThread::msleep(10);
    }
    return true;
}

}  // namespace tavrelon::testing
