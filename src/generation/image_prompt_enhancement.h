#pragma once

#include "generation/pollinations_service.h"

/// How a model turns a request into an image prompt. Its failures end in a fall-back and are not thrown, but for a
/// `KeyRefused`: the request itself is always a prompt. `service` outlives the tasks.
namespace tavrelon::generation {

/// The phrases of a structured description, else a prompt in one line, else the text as it is.
async::Task<QString> enhanceImagePrompt(PollinationsService& service, QString text, PromptSafety safety);

/// A structured description of the picture; absent when no model writes one.
async::Task<std::optional<QString>> generatePromptTemplate(PollinationsService& service, QString text,
                                                           PromptSafety safety);

/// A prompt in one line; absent when no model writes one.
async::Task<std::optional<QString>> optimizeImagePrompt(PollinationsService& service, QString text,
                                                        PromptSafety safety);

}  // namespace tavrelon::generation
