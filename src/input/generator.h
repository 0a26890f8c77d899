#pragma once

#include <QByteArray>
#include <vector>

#include "async/task.h"
#include "generation/ai_service.h"

namespace tavrelon::input {

/// What the flows ask for answers. Fails with `generation::ProcessingError` or `async::CancellationError`.
class Generator {
 public:
    virtual ~Generator() = default;

    /// How long a request may take in all.
    virtual std::chrono::seconds deadline() const { return std::chrono::seconds(120); }

    virtual async::Task<generation::GenerationResult> generate(generation::GenerationRequest request) = 0;

    /// Describes frames of a window, oldest first; never empty.
    virtual async::Task<generation::GenerationResult> generateVideoResult(generation::GenerationRequest request,
                                                                          std::vector<QByteArray> frames) = 0;
};

}  // namespace tavrelon::input
