#include "generation/text_chain.h"

#include "generation/model_walk.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

constexpr auto tag = "[Pollinations] "_L1;

/// The models of `list` that can be asked, in order: with an image only those that take one.
std::vector<PollinationsModel> availableModels(std::vector<PollinationsModel> list,
                                               const std::optional<QByteArray>& image) {
    if (image)
        std::erase_if(list, [](PollinationsModel model) {
            return model != PollinationsModel::openai && model != PollinationsModel::gemini &&
                   model != PollinationsModel::nvidiaNemotron && model != PollinationsModel::glmVision;
        });
    return list;
}

/// The line that tells why the first walk leaves a model.
QString failureLine(PollinationsModel model, const std::exception_ptr& error, bool imageSent) {
    const auto failed = tag + "Text generation failed with "_L1 + displayName(model) + ": "_L1;
    try {
        std::rethrow_exception(error);
    } catch (const PollinationsError& known) {
        const bool api = known.code() == PollinationsError::Code::apiError;
        if (api && known.status() == 400 && known.text().contains("1210"_L1) &&
            chatProtocol(model) == ChatProtocol::GLM)
            return tag + (imageSent ? "GLM error 1210 with image input. Skipping model."_L1
                                    : "GLM error 1210. Skipping model."_L1);
        if (known.code() == PollinationsError::Code::unsupportedImageInput)
            return tag + known.text() + ". Skipping model."_L1;
        return failed + (api ? known.text() : known.localizedDescription());
    } catch (const std::exception& other) {
        return failed + text::localizedDescription(other);
    }
}

/// Who answered in the end, and what the user is told where nobody does: why the service of their choice failed, or
/// else the first that was asked.
class TextChain {
 public:
    explicit TextChain(PollinationsService& service, std::exception_ptr reason = nullptr)
        : service_(service), reason_(std::move(reason)) {}

    const QString& source() const { return source_; }

    /// The text of the user's own model; absent where there is none or it fails.
    async::Task<std::optional<QString>> askGateway(ChatPrompt prompt) {
        const auto& configuration = service_.configuration;
        if (!configuration.asksOwnModel() || isSpent(PollinationsModel::own))
            co_return std::nullopt;
        try {
            auto text = co_await service_.generateWithGateway(std::move(prompt), JsonMode::Off);
            service_.log().line(tag + "Text generated with custom model "_L1 +
                                configuration.pollinationsVisionModelOverride.value_or(QString()));
            source_ = configuration.gatewaySourceName();
            co_return text;
        } catch (const async::CancellationError&) {
            throw;
        } catch (const KeyRefused&) {
            throw;
        } catch (const std::exception& error) {
            service_.log().line(tag + "Custom Pollinations model failed: "_L1 + text::localizedDescription(error));
            keep(PollinationsModel::own, std::current_exception());
        }
        co_return std::nullopt;
    }

    using FailureLine = std::function<QString(PollinationsModel, const std::exception_ptr&)>;

    /// Asks one model after another. The log tells who answered between `done` and `remark`.
    async::Task<std::optional<QString>> walk(std::vector<PollinationsModel> models, ChatPrompt prompt,
                                             QLatin1StringView done, QLatin1StringView remark, FailureLine failure) {
        WalkSteps steps{
            .accept =
                [this, done, remark](PollinationsModel model, const QString& reply) {
                    source_ = service_.configuration.sourceName(model);
                    service_.log().line(tag + done + displayName(model) + remark);
                    return std::optional(reply);
                },
            .failed =
                [this, failure = std::move(failure)](PollinationsModel model, std::exception_ptr error) {
                    service_.log().line(failure(model, error));
                    keep(model, std::move(error));
                },
        };
        std::erase_if(models, [this](PollinationsModel model) { return isSpent(model); });
        return walkModels(service_, std::move(models), std::move(prompt), JsonMode::Off, std::move(steps));
    }

    [[noreturn]] void fail() const {
        if (reason_)
            std::rethrow_exception(reason_);
        throw PollinationsError::allModelsFailed();
    }

 private:
    bool isSpent(PollinationsModel model) const { return std::ranges::find(spent_, model) != spent_.end(); }

    void keep(PollinationsModel model, std::exception_ptr error) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& known) {
            if (wouldFailAgain(known))
                spent_.push_back(model);
        }
        if (!reason_)
            reason_ = std::move(error);
    }

    PollinationsService& service_;
    QString source_;
    std::exception_ptr reason_;
    std::vector<PollinationsModel> spent_;  ///< not asked again, without the picture either
};

/// The gateway is asked with the image, and once more without it where nobody else may be.
async::Task<QString> textBy(PollinationsService& service, TextChain& chain, ChatPrompt prompt) {
    const bool imageSent = prompt.image.has_value();
    auto withoutImage = prompt;
    withoutImage.image.reset();
    if (auto text = co_await chain.askGateway(prompt))
        co_return *std::move(text);
    if (service.configuration.asksGatewayOnly()) {
        auto text = imageSent ? co_await chain.askGateway(std::move(withoutImage)) : std::nullopt;
        if (!text)
            chain.fail();
        co_return *std::move(text);
    }
    const auto& configuration = service.configuration;
    auto models = availableModels(imageSent ? configuration.visionModels : configuration.textModels, prompt.image);
    if (auto text = co_await chain.walk(
            std::move(models), std::move(prompt), "Text generated with "_L1, {},
            [imageSent](auto model, const auto& error) -> QString { return failureLine(model, error, imageSent); }))
        co_return *std::move(text);
    if (!imageSent)
        chain.fail();
    service.log().line(tag + "All vision models failed. Retrying without image."_L1);
    auto text = co_await chain.walk(configuration.textModels, std::move(withoutImage), "Text generated with "_L1,
                                    " (no image)"_L1, [](auto model, const auto& error) -> QString {
                                        return tag + "Text generation failed with "_L1 + displayName(model) +
                                               " (no image): "_L1 + describe(error);
                                    });
    if (!text)
        chain.fail();
    co_return *std::move(text);
}

}  // namespace

async::Task<ModelAnswer> answerText(PollinationsService& service, ChatPrompt prompt) {
    if (service.configuration.ollamaEnabled && prompt.image)
        co_return ModelAnswer{co_await service.generateWithOllama(std::move(prompt.system), std::move(prompt.user),
                                                                  {*std::move(prompt.image)}),
                              service.configuration.ollamaSourceName()};
    TextChain chain(service);
    auto text = co_await textBy(service, chain, std::move(prompt));
    co_return ModelAnswer{std::move(text), chain.source()};
}

async::Task<QString> generateText(PollinationsService& service, ChatPrompt prompt) {
    auto answer = co_await answerText(service, std::move(prompt));
    co_return std::move(answer.text);
}

async::Task<QString> generateVideoFallback(PollinationsService& service, std::exception_ptr previousError,
                                           ChatPrompt prompt) {
    auto models = availableModels(service.configuration.visionModels, prompt.image);
    std::erase(models, PollinationsModel::nvidiaNemotron);
    TextChain chain(service, std::move(previousError));
    auto text = co_await chain.walk(std::move(models), std::move(prompt), "Video fallback text generated with "_L1, {},
                                    [](auto model, const auto& error) -> QString {
                                        return tag + "Video fallback failed with "_L1 + displayName(model) + ": "_L1 +
                                               describe(error);
                                    });
    if (!text)
        chain.fail();
    co_return *std::move(text);
}

}  // namespace tavrelon::generation
