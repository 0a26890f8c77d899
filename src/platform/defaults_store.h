#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace tavrelon::platform {

/// Named entries that outlive the process, readable by their owner alone. Main thread.
class DefaultsStore {
 public:
    virtual ~DefaultsStore() = default;

    /// The entry's bytes; absent when it was never set or cannot be read.
    virtual std::optional<QByteArray> data(const QString& key) const = 0;

    /// Replaces the entry as a whole. False when it could not be stored; the old entry then stays.
    virtual bool setData(const QString& key, const QByteArray& value) = 0;

    /// The entry as text, under the same rules.
    std::optional<QString> string(const QString& key) const {
        if (const auto bytes = data(key))
            return QString::fromUtf8(*bytes);
        return std::nullopt;
    }
    bool setString(const QString& key, const QString& value) { return setData(key, value.toUtf8()); }
};

}  // namespace tavrelon::platform
