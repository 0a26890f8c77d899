#pragma once

#include <QByteArray>
#include <QString>
#include <QUuid>
#include <chrono>
#include <expected>
#include <nlohmann/json.hpp>
#include <optional>

#include "text/localized_error.h"

namespace tavrelon::text {

/// A JSON document whose objects keep the order of their keys.
using Json = nlohmann::ordered_json;

/// A document that does not parse, lacks a required key, or holds a value of another type or out of range.
class JsonError : public LocalizedError {
    using LocalizedError::LocalizedError;
};

/// Parses UTF-8 bytes. Throws `JsonError`; bytes that are not UTF-8 are an error as well.
Json parseJson(QByteArrayView bytes);

/// The document without white space, as UTF-8. Unpaired surrogates come out as U+FFFD.
QByteArray compactJson(const Json& json);

Json toJson(const QString& text);
inline Json toJson(bool value) {
    return value;
}
inline Json toJson(double value) {
    return value;
}
inline Json toJson(qint64 value) {
    return value;
}

/// Values by type, each throwing `JsonError` for another type. Integers are numbers without a fraction that fit.
QString stringFrom(const Json& json);
bool boolFrom(const Json& json);
double doubleFrom(const Json& json);
qint64 integerFrom(const Json& json);

/// What the value holds, as long as it lives. Throws `JsonError` when it is of another type.
const Json::array_t& arrayFrom(const Json& json);
const Json::object_t& objectFrom(const Json& json);

/// The value under `key` of an object. Throws `JsonError` when `json` is no object or lacks the key.
const Json& required(const Json& json, const char* key);

/// The value under `key`, or null when the key is missing or its value is JSON null. Throws when `json` is no object.
const Json* find(const Json& json, const char* key);

/// An optional text under `key`: absent when the key is missing, `JsonError` for another type.
std::optional<QString> optionalString(const Json& json, const char* key);

/// The first of the keys whose value is a text with something in it, trimmed; values of other types are passed over.
/// Throws when `json` is no object.
std::optional<QString> firstText(const Json& json, std::initializer_list<const char*> keys);

/// Identifiers are upper-case hyphenated text.
QString uuidText(const QUuid& id);
QUuid uuidFrom(const Json& json);

/// Dates are seconds since 2001-01-01 00:00:00 UTC.
double secondsSinceReferenceDate(std::chrono::system_clock::time_point date);
std::chrono::system_clock::time_point dateFromReferenceSeconds(double seconds);

/// Throws `JsonError` for another type and for a date that the clock cannot hold.
std::chrono::system_clock::time_point dateFrom(const Json& json);

}  // namespace tavrelon::text
