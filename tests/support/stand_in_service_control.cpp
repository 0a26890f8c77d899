#include "support/stand_in_service_control.h"

namespace tavrelon::testing {

using text::Json;
using namespace Qt::StringLiterals;

namespace {

void takeScript(const Json& document, StandInLedger& ledger) {
    const auto* list = document.is_array() ? &document : text::find(document, "answers");
    const auto* standing = document.is_object() ? text::find(document, "default") : nullptr;
    std::vector<StandInAnswer> answers;
    if (list) {
        for (const auto& answer : *list)
            answers.push_back(StandInAnswer::fromJson(answer));
    }
    if (standing)
        ledger.setDefault(StandInAnswer::fromJson(*standing));
    ledger.script(std::move(answers));
}

/// A body as a person wants to see it: JSON as JSON, anything else as text.
Json readable(const QByteArray& body) {
    auto json = Json::parse(body.begin(), body.end(), nullptr, false);
    return json.is_discarded() ? text::toJson(QString::fromUtf8(body)) : json;
}

Json toJson(const ReceivedRequest& request) {
    return {{"path", text::toJson(request.path)},
            {"target", request.target.toStdString()},
            {"body", readable(request.body)},
            {"abandoned", request.abandoned}};
}

}  // namespace

std::optional<ControlAnswer> answerControl(const ReceivedRequest& request, StandInLedger& ledger) {
    if (!request.path.startsWith("/control/"_L1))
        return std::nullopt;
    if (request.path == "/control/requests"_L1) {
        auto list = Json::array();
        for (const auto& one : ledger.requests())
            list.push_back(toJson(one));
        return ControlAnswer{.body = text::compactJson(list)};
    }
    if (request.path == "/control/reset"_L1) {
        ledger.reset();
        return ControlAnswer{};
    }
    if (request.path != "/control/script"_L1)
        return ControlAnswer{.status = 404};
    try {
        takeScript(text::parseJson(request.body), ledger);
    } catch (const text::JsonError& error) {
        return ControlAnswer{.status = 400,
                             .body = text::compactJson({{"error", text::toJson(error.localizedDescription())}})};
    }
    return ControlAnswer{};
}

}  // namespace tavrelon::testing
