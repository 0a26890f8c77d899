#pragma once

#include <exception>
#include <functional>

#include "generation/pollinations_service.h"

namespace tavrelon::generation {

/// What the starter of a walk makes of each model's answer.
struct WalkSteps {
    /// Takes the reply, or gives nothing so that the walk goes on. An error thrown here counts as the model's own.
    std::function<std::optional<QString>(PollinationsModel, const QString& reply)> accept;

    /// Hears of a failed call; the walk goes on.
    std::function<void(PollinationsModel, std::exception_ptr error)> failed;
};

/// Asks one model after another, strictly in turn, until a reply is accepted; absent when none is. No error of a model
/// ends the walk. `service` and what the steps refer to outlive the task.
async::Task<std::optional<QString>> walkModels(PollinationsService& service, std::vector<PollinationsModel> models,
                                               ChatPrompt prompt, JsonMode jsonMode, WalkSteps steps);

/// What the user may read of a kept error.
QString describe(const std::exception_ptr& error);

}  // namespace tavrelon::generation
