#pragma once

#include <map>

#include "platform/defaults_store.h"

namespace tavrelon::testing {

/// Entries in memory.
class MemoryDefaultsStore : public platform::DefaultsStore {
 public:
    std::optional<QByteArray> data(const QString& key) const override {
        const auto found = entries_.find(key);
        return found == entries_.end() ? std::nullopt : std::optional(found->second);
    }

    bool setData(const QString& key, const QByteArray& value) override {
        if (refuseWrites || key.isEmpty() || key.startsWith(u'.') || key.contains(u'/') || key.contains(QChar::Null))
            return false;
        entries_[key] = value;
        ++writeCount;
        return true;
    }

    bool refuseWrites = false;
    int writeCount = 0;

 private:
    std::map<QString, QByteArray> entries_;
};

}  // namespace tavrelon::testing
