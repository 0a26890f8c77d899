#include "generation/model_walk.h"

namespace tavrelon::generation {

async::Task<std::optional<QString>> walkModels(PollinationsService& service, std::vector<PollinationsModel> models,
                                               ChatPrompt prompt, JsonMode jsonMode, WalkSteps steps) {
    for (const auto model : models) {
        if (!service.configuration.hasKeyFor(model))
            continue;  // its complaint would hide why the others failed
        std::exception_ptr error;
        try {
            const auto reply = co_await service.generateWithModel(model, prompt, jsonMode);
            if (auto accepted = steps.accept(model, reply))
                co_return accepted;
        } catch (const async::CancellationError&) {  // nobody waits for the next model's answer
            throw;
        } catch (const KeyRefused&) {
            throw;
        } catch (const std::exception&) {
            error = std::current_exception();
        }
        if (error)
            steps.failed(model, error);
    }
    co_return std::nullopt;
}

QString describe(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        return text::localizedDescription(known);
    }
}

}  // namespace tavrelon::generation
