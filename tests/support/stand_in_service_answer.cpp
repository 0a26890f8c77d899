#include "support/stand_in_service_answer.h"

#include <algorithm>
#include <map>

#include "support/stand_in_service_replies.h"

namespace tavrelon::testing {

using namespace Qt::StringLiterals;

namespace {

StandInAnswer::Fault faultFrom(const QString& name) {
    using enum StandInAnswer::Fault;
    static const std::map<QString, StandInAnswer::Fault> faults{
        {u"stall"_s, Stall}, {u"reset"_s, Reset}, {u"truncate"_s, Truncate}, {u"notHttp"_s, NotHttp}};
    const auto found = faults.find(name);
    if (found == faults.end())
        throw text::JsonError("unknown fault "_L1 + name);
    return found->second;
}

}  // namespace

StandInAnswer StandInAnswer::fromJson(const text::Json& json) {
    if (!json.is_object())
        throw text::JsonError(u"an answer is an object"_s);
    StandInAnswer answer;
    for (const auto& [key, value] : json.items()) {
        if (key == "path")
            answer.path = text::stringFrom(value);
        else if (key == "status")
            answer.status = static_cast<int>(text::integerFrom(value));
        else if (key == "body")
            answer.body = text::stringFrom(value).toUtf8();
        else if (key == "content")
            answer.content = text::stringFrom(value);
        else if (key == "delayMs")
            answer.delayMs = static_cast<int>(text::integerFrom(value));
        else if (key == "fault")
            answer.fault = faultFrom(text::stringFrom(value));
        else
            throw text::JsonError("unknown key "_L1 + QString::fromStdString(key));
    }
    return answer;
}

QByteArray StandInAnswer::bodyFor(const ReceivedRequest& request) const {
    if (body)
        return *body;
    const bool asksForPicture = request.path.contains("/image/"_L1) || request.path.endsWith(".png"_L1);
    return !content && asksForPicture ? picture() : chatReply(request.path, content.value_or(u"ANSWER"_s));
}

HeaderList StandInAnswer::headersFor(const QByteArray& sent) const {
    auto list = headers;
    if (std::ranges::none_of(list, [](const auto& header) { return header.first.toLower() == "content-type"; }))
        list.emplace_back("Content-Type", isPicture(sent) ? "image/png" : "application/json");
    return list;
}

}  // namespace tavrelon::testing
