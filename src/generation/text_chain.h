#pragma once

#include <exception>

#include "generation/pollinations_service.h"

/// What answers a text or vision request: the user's own model first, then one model of the list after another. All
/// throw as the service's calls do, and end at once when the awaiting task was asked to stop; `service` outlives them.
namespace tavrelon::generation {

/// A model's text and who wrote it, by the names of the model and of its host.
struct ModelAnswer {
    QString text;
    QString source;
};

/// Asks the configured chain of models until one answers. An empty text is an answer. Throws the error of the first
/// that was asked, or `allModelsFailed` when none was.
async::Task<ModelAnswer> answerText(PollinationsService& service, ChatPrompt prompt);

/// The same, where it does not matter who answers.
async::Task<QString> generateText(PollinationsService& service, ChatPrompt prompt);

/// Describes a video by one of its frames, for the models that take a single image. `previousError` is what failed
/// before, if anything was asked, and is thrown again when these fail too; else the first of their own failures is.
async::Task<QString> generateVideoFallback(PollinationsService& service, std::exception_ptr previousError,
                                           ChatPrompt prompt);

}  // namespace tavrelon::generation
