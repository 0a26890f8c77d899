#pragma once

#include <QByteArray>
#include <vector>

#include "async/task.h"
#include "generation/ai_service.h"

namespace tavrelon::generation {

/// What the flows ask for answers. Fails with `ProcessingError` or `async::CancellationError`.
class Generator {
 public:
    virtual ~Generator() = default;

    /// How long a request may take in all.
    virtual std::chrono::seconds deadline() const { return std::chrono::seconds(120); }

    virtual async::Task<GenerationResult> generate(GenerationRequest request) = 0;

    /// Describes frames of a window, oldest first; never empty.
    virtual async::Task<GenerationResult> generateVideoResult(GenerationRequest request,
                                                              std::vector<QByteArray> frames) = 0;
};

}  // namespace tavrelon::generation
