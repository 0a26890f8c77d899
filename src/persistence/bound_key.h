#pragma once

#include <optional>

#include "platform/defaults_store.h"

namespace tavrelon::persistence {

/// The key of a service whose address the user chooses. It belongs to the server (scheme, host and port) for which it
/// was entered: whoever changes the address, the key does not follow. It stays stored, and is good again when the
/// address comes back.
struct BoundKey {
    QString typed;   ///< as the user typed it
    QString origin;  ///< of the address that it was typed for; empty for one that is not HTTP, which takes no key

    bool belongsTo(const QString& address) const;

    /// What is sent to the address: trimmed, and absent when there is no key for it.
    std::optional<QString> keyFor(const QString& address) const;

    bool operator==(const BoundKey&) const = default;
};

/// A key typed while this is the service's address.
BoundKey keyTypedFor(const QString& address, const QString& typed);

/// The stored key. One without an origin was stored by an older version, and is bound to `address` from now on.
BoundKey boundKey(platform::DefaultsStore& userDefaults, QLatin1StringView entry, const QString& address);

void storeBoundKey(platform::DefaultsStore& userDefaults, QLatin1StringView entry, const BoundKey& key);

}  // namespace tavrelon::persistence
