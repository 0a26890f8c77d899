#include "text/tolerant_json.h"

#include "text/characters.h"
#include "text/json_size.h"

namespace tavrelon::text {

namespace {

/// How often a JSON text inside a JSON text is opened. No model nests deeper; the bound keeps a hostile reply cheap.
constexpr int deepestNesting = 8;

std::optional<Json> parseAtDepth(const QString& reply, int depth);

std::optional<QString> fencedBlock(const QString& reply) {
    const QLatin1StringView fence("```");
    const auto open = reply.indexOf(fence);
    if (open < 0)
        return std::nullopt;
    const auto close = reply.indexOf(fence, open + fence.size());
    if (close < 0)
        return std::nullopt;
    auto content = trimmed(reply.sliced(open + fence.size(), close - open - fence.size()));
    if (content.startsWith(QLatin1StringView("json")))
        content = trimmed(content.sliced(4));
    return content;
}

std::optional<QString> bracedSpan(const QString& reply) {
    const auto first = reply.indexOf(u'{');
    const auto last = reply.lastIndexOf(u'}');
    if (first < 0 || last < first)
        return std::nullopt;
    return reply.sliced(first, last - first + 1);
}

std::optional<Json> objectFrom(const std::optional<QString>& candidate, int depth) {
    if (!candidate)
        return std::nullopt;
    const auto bytes = candidate->toUtf8();
    if (!isOpenableJson(bytes))
        return std::nullopt;
    auto json = Json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (json.is_object())
        return json;
    if (json.is_string())
        return parseAtDepth(stringFrom(json), depth + 1);
    return std::nullopt;
}

std::optional<Json> parseAtDepth(const QString& reply, int depth) {
    if (depth > deepestNesting)
        return std::nullopt;
    if (auto object = objectFrom(reply, depth))
        return object;
    if (auto object = objectFrom(fencedBlock(reply), depth))
        return object;
    return objectFrom(bracedSpan(reply), depth);
}

}  // namespace

std::optional<Json> parseJSONObject(const QString& reply) {
    return parseAtDepth(reply, 0);
}

}  // namespace tavrelon::text
