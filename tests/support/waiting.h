#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <functional>

namespace tavrelon::testing {

/// Runs the event loop for a time. A test without an application object has none, and sleeps.
inline void letPass(std::chrono::milliseconds time) {
    if (!QCoreApplication::instance())
        return QThread::msleep(static_cast<unsigned long>(time.count()));
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Lets time pass until `condition` holds; false when `limit` passed without it.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        letPass(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace tavrelon::testing
