#pragma once

#include <QStringList>
#include <mutex>

#include "platform/log.h"

namespace tavrelon::testing {

/// Keeps what was logged. Any thread.
class RecordingLog : public platform::Log {
 public:
    void line(const QString& text) override {
        const std::lock_guard lock(mutex_);
        lines_.push_back(text);
    }
    QStringList lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    bool contains(const QString& text) const { return lines().contains(text); }
    void clear() {
        const std::lock_guard lock(mutex_);
        lines_.clear();
    }

 private:
    mutable std::mutex mutex_;
    QStringList lines_;
};

}  // namespace tavrelon::testing
