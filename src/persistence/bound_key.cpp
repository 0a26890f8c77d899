#include "persistence/bound_key.h"

#include "platform/web_origin.h"
#include "text/characters.h"

namespace tavrelon::persistence {

namespace {

QString originOf(const QString& address) {
    return platform::webOrigin(QUrl(address, QUrl::StrictMode));
}

QString originEntry(QLatin1StringView entry) {
    return entry + QStringLiteral(".origin");
}

}  // namespace

bool BoundKey::belongsTo(const QString& address) const {
    return !origin.isEmpty() && origin == originOf(address);
}

std::optional<QString> BoundKey::keyFor(const QString& address) const {
    return belongsTo(address) ? text::trimmedOrAbsent(typed) : std::nullopt;
}

BoundKey keyTypedFor(const QString& address, const QString& typed) {
    return {typed, originOf(address)};
}

BoundKey boundKey(platform::DefaultsStore& userDefaults, QLatin1StringView entry, const QString& address) {
    const auto typed = userDefaults.string(entry);
    if (!typed)
        return {};
    if (const auto origin = userDefaults.string(originEntry(entry)))
        return {*typed, text::trimmed(*origin)};
    auto key = keyTypedFor(address, *typed);
    userDefaults.setString(originEntry(entry), key.origin);
    return key;
}

void storeBoundKey(platform::DefaultsStore& userDefaults, QLatin1StringView entry, const BoundKey& key) {
    // In this order: an end in between leaves the new key with the old server, never the old key with the new one.
    if (userDefaults.setString(entry, key.typed))
        userDefaults.setString(originEntry(entry), key.origin);
}

}  // namespace tavrelon::persistence
