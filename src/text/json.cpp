#include "text/json.h"

#include <cmath>

#include "text/characters.h"
#include "text/json_size.h"

namespace tavrelon::text {

namespace {

/// 2001-01-01 00:00:00 UTC, in seconds since 1970.
constexpr double referenceEpoch = 978'307'200.0;

[[noreturn]] void throwTypeMismatch(const Json& json, const char* wanted) {
    throw JsonError(QStringLiteral("Expected %1 but found %2 instead.")
                        .arg(QLatin1StringView(wanted), QLatin1StringView(json.type_name())));
}

}  // namespace

Json parseJson(QByteArrayView bytes) {
    if (!isOpenableJson(bytes))
        throw JsonError(QStringLiteral("The document is too large."));
    try {
        return Json::parse(bytes.begin(), bytes.end());
    } catch (const Json::exception& error) {
        throw JsonError(QString::fromUtf8(error.what()));
    }
}

QByteArray compactJson(const Json& json) {
    return QByteArray::fromStdString(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

Json toJson(const QString& text) {
    return text.toStdString();
}

QString stringFrom(const Json& json) {
    if (!json.is_string())
        throwTypeMismatch(json, "a string");
    return QString::fromStdString(json.get_ref<const std::string&>());
}

bool boolFrom(const Json& json) {
    if (!json.is_boolean())
        throwTypeMismatch(json, "a boolean");
    return json.get<bool>();
}

double doubleFrom(const Json& json) {
    if (!json.is_number())
        throwTypeMismatch(json, "a number");
    return json.get<double>();
}

qint64 integerFrom(const Json& json) {
    if (json.is_number_unsigned() && json.get<quint64>() > static_cast<quint64>(INT64_MAX))
        throw JsonError(QStringLiteral("The number does not fit in 64 bits."));
    if (json.is_number_integer())
        return json.get<qint64>();
    if (json.is_number_float()) {
        const double value = json.get<double>();
        if (std::trunc(value) == value && std::abs(value) < 9.0e15)
            return static_cast<qint64>(value);
    }
    throwTypeMismatch(json, "an integer");
}

const Json::array_t& arrayFrom(const Json& json) {
    if (!json.is_array())
        throwTypeMismatch(json, "an array");
    return json.get_ref<const Json::array_t&>();
}

const Json::object_t& objectFrom(const Json& json) {
    if (!json.is_object())
        throwTypeMismatch(json, "an object");
    return json.get_ref<const Json::object_t&>();
}

const Json& required(const Json& json, const char* key) {
    const auto& object = objectFrom(json);
    const auto found = object.find(key);
    if (found == object.end())
        throw JsonError(QStringLiteral("No value found for the key \"%1\".").arg(QLatin1StringView(key)));
    return found->second;
}

const Json* find(const Json& json, const char* key) {
    const auto& object = objectFrom(json);
    const auto found = object.find(key);
    return found == object.end() || found->second.is_null() ? nullptr : &found->second;
}

std::optional<QString> optionalString(const Json& json, const char* key) {
    if (const auto* value = find(json, key))
        return stringFrom(*value);
    return std::nullopt;
}

std::optional<QString> firstText(const Json& json, std::initializer_list<const char*> keys) {
    for (const char* key : keys)
        if (const auto* value = find(json, key); value && value->is_string())
            if (auto text = trimmedOrAbsent(stringFrom(*value)))
                return text;
    return std::nullopt;
}

QString uuidText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

QUuid uuidFrom(const Json& json) {
    const auto text = stringFrom(json);
    const auto id = text.size() == 36 ? QUuid::fromString(text) : QUuid();
    if (id.isNull() && text != QLatin1StringView("00000000-0000-0000-0000-000000000000"))
        throw JsonError(QStringLiteral("The text is no UUID."));
    return id;
}

double secondsSinceReferenceDate(std::chrono::system_clock::time_point date) {
    return std::chrono::duration<double>(date.time_since_epoch()).count() - referenceEpoch;
}

std::chrono::system_clock::time_point dateFromReferenceSeconds(double seconds) {
    const auto sinceEpoch = std::chrono::duration<double>(seconds + referenceEpoch);
    return std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(sinceEpoch));
}

std::chrono::system_clock::time_point dateFrom(const Json& json) {
    constexpr double farthest = 8.0e9;  // seconds, within the 292 years that the clock counts in nanoseconds
    const double seconds = doubleFrom(json);
    if (!(std::abs(seconds) < farthest))
        throw JsonError(QStringLiteral("The date is out of range."));
    return dateFromReferenceSeconds(seconds);
}

}  // namespace tavrelon::text
