#pragma once

#include <chrono>
#include <expected>

#include "async/main_loop.h"
#include "generation/pollinations_service.h"
#include "text/localized_text.h"

namespace tavrelon::app {

/// What became of one short question to the service that the user chose.
struct ServiceTest {
    std::expected<QString, text::LocalizedText> answer;  ///< trimmed, in one line; the error is for the user
    QString source;                                      ///< the model and its host; empty where none answered
    std::chrono::milliseconds taken{0};
};

/// Asks the chain of models as a request does, with a fixed question that holds nothing of the user's. Takes at most
/// `PollinationsService::raceDeadline`, or `localDeadline` where a model on this machine may have to be loaded first.
/// Main thread; throws nothing but `async::CancellationError`. Both outlive the task.
async::Task<ServiceTest> testService(generation::PollinationsService& models, async::MainLoop& loop);

}  // namespace tavrelon::app
