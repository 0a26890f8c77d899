#pragma once

#include <optional>

#include "support/stand_in_service.h"

namespace tavrelon::testing {

struct ControlAnswer {
    int status = 200;
    QByteArray body = "{}";
};

/// Does what a request under /control asks; absent for any other path. A script that does not parse is a 400 with the
/// reason, and changes nothing.
std::optional<ControlAnswer> answerControl(const ReceivedRequest& request, StandInLedger& ledger);

}  // namespace tavrelon::testing
