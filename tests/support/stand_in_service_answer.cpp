#include "support/stand_in_service_answer.h"

#include <algorithm>
#include <functional>
#include <map>

#include "support/stand_in_service_replies.h"

namespace tavrelon::testing {

using text::Json;
using namespace Qt::StringLiterals;

namespace {

StandInAnswer::Fault faultFrom(const QString& name) {
    static const std::map<QString, StandInAnswer::Fault> faults{{u"stall"_s, StandInAnswer::Fault::Stall},
                                                                {u"reset"_s, StandInAnswer::Fault::Reset},
                                                                {u"truncate"_s, StandInAnswer::Fault::Truncate},
                                                                {u"notHttp"_s, StandInAnswer::Fault::NotHttp}};
    const auto found = faults.find(name);
    if (found == faults.end())
        throw text::JsonError("unknown fault "_L1 + name);
    return found->second;
}

StandInAnswer::Echo echoFrom(const QString& name) {
    if (name == "uppercase"_L1)
        return StandInAnswer::Echo::Uppercase;
    if (name == "same"_L1)
        return StandInAnswer::Echo::Same;
    throw text::JsonError("unknown echo "_L1 + name);
}

int smallInteger(const Json& value) {
    return static_cast<int>(text::integerFrom(value));
}

using Setter = std::function<void(StandInAnswer&, const Json&)>;

const std::map<std::string, Setter>& setters() {
    static const std::map<std::string, Setter> table{
        {"path", [](auto& answer, const Json& value) { answer.path = text::stringFrom(value); }},
        {"model", [](auto& answer, const Json& value) { answer.model = text::stringFrom(value); }},
        {"status", [](auto& answer, const Json& value) { answer.status = smallInteger(value); }},
        {"headers",
         [](auto& answer, const Json& value) {
             for (const auto& [name, content] : value.items())
                 answer.headers.emplace_back(QByteArray::fromStdString(name), text::stringFrom(content).toUtf8());
         }},
        {"body", [](auto& answer, const Json& value) { answer.body = text::stringFrom(value).toUtf8(); }},
        {"json", [](auto& answer, const Json& value) { answer.body = text::compactJson(value); }},
        {"bodyBase64",
         [](auto& answer, const Json& value) {
             answer.body = QByteArray::fromBase64(text::stringFrom(value).toLatin1());
         }},
        {"content", [](auto& answer, const Json& value) { answer.content = text::stringFrom(value); }},
        {"echo", [](auto& answer, const Json& value) { answer.echo = echoFrom(text::stringFrom(value)); }},
        {"picture",
         [](auto& answer, const Json& value) {
             if (text::boolFrom(value))
                 answer.body = picture();
         }},
        {"fillerBytes", [](auto& answer, const Json& value) { answer.fillerBytes = text::integerFrom(value); }},
        {"delayMs", [](auto& answer, const Json& value) { answer.delayMs = smallInteger(value); }},
        {"dripMs", [](auto& answer, const Json& value) { answer.dripMs = smallInteger(value); }},
        {"fault", [](auto& answer, const Json& value) { answer.fault = faultFrom(text::stringFrom(value)); }},
    };
    return table;
}

}  // namespace

StandInAnswer StandInAnswer::fromJson(const Json& json) {
    if (!json.is_object())
        throw text::JsonError(u"an answer is an object"_s);
    StandInAnswer answer;
    for (const auto& [key, value] : json.items()) {
        const auto setter = setters().find(key);
        if (setter == setters().end())
            throw text::JsonError("unknown key "_L1 + QString::fromStdString(key));
        setter->second(answer, value);
    }
    return answer;
}

bool StandInAnswer::fits(const ReceivedRequest& request) const {
    if (!path.isEmpty() && !request.path.contains(path))
        return false;
    if (model.isEmpty())
        return true;
    const auto asked = parsedOrNull(request.body);
    return asked.is_object() && asked.contains("model") && asked["model"] == text::toJson(model);
}

QByteArray StandInAnswer::bodyFor(const ReceivedRequest& request) const {
    if (body)
        return *body;
    if (content)
        return chatReply(request.path, *content);
    const auto usual = echo == Echo::None ? usualBody(request.path) : std::nullopt;
    if (usual)
        return *usual;
    const auto asked = lastUserMessage(request.body);
    return chatReply(request.path, echo == Echo::Same ? asked : asked.toUpper());
}

HeaderList StandInAnswer::headersFor(const QByteArray& sent) const {
    auto list = headers;
    if (std::ranges::none_of(list, [](const auto& header) { return header.first.toLower() == "content-type"; }))
        list.emplace_back("Content-Type", isPicture(sent) ? "image/png" : "application/json");
    return list;
}

}  // namespace tavrelon::testing
