#pragma once

#include <gtest/gtest.h>

#include "generation/text_chain.h"
#include "support/fake_http_session.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/run_task.h"
#include "text/json.h"

namespace tavrelon::testing {

/// A gateway with keys for every service, before a scripted network.
class GatewayFixture : public ::testing::Test {
 public:
    GatewayFixture() { service.configuration.fallBackToOtherServices = true; }

    VirtualMainLoop loop;
    FakeHttpSession http{loop};
    RecordingLog log;
    generation::PollinationsService service{loop, http, log, endpoints()};

    static generation::ServiceEndpoints endpoints() {
        return {.pollinationsBaseURL = QStringLiteral("https://pollinations.test"),
                .glmBaseURL = QStringLiteral("https://glm.test/v4"),
                .nvidiaChatCompletionsURL = QStringLiteral("https://nvidia.test/v1/chat/completions"),
                .ollamaCloudTagsURL = QStringLiteral("https://ollama.test/api/tags"),
                .ollamaCloudChatURL = QStringLiteral("https://ollama.test/api/chat"),
                .ollamaLocalChatURL = QStringLiteral("http://localhost:11434/api/chat"),
                .cloneApiBaseURL = {},
                .builtInPollinationsKey = QStringLiteral(" sk_default\n"),
                .builtInGLMKey = QStringLiteral("glm.key"),
                .builtInNvidiaApiKey = QStringLiteral(" nvapi-built-in ")};
    }

    static QByteArray chatReply(const QString& content) {
        return text::compactJson(
            {{"choices", text::Json::array({{{"message", {{"content", text::toJson(content)}}}}})}});
    }

    /// The model of each request, in order.
    QStringList askedModels() const {
        QStringList models;
        for (const auto& request : http.requests())
            models.push_back(text::stringFrom(text::parseJson(request.body)["model"]));
        return models;
    }
    text::Json body(std::size_t index) const { return text::parseJson(http.requests().at(index).body); }

    static QByteArray header(const platform::HttpRequest& request, QByteArrayView name) {
        for (const auto& [key, value] : request.headers) {
            if (key == name)
                return value;
        }
        return {};
    }

    QString generate(const std::optional<QByteArray>& image = {}) {
        return runTask(loop, generateText(service, {.system = QStringLiteral("S"),
                                                    .user = QStringLiteral("U"),
                                                    .image = image,
                                                    .maxTokens = 2000,
                                                    .temperature = 0.7F}));
    }
    /// The description of the error that generating throws.
    QString generateError(const std::optional<QByteArray>& image = {}) {
        try {
            generate(image);
        } catch (const text::LocalizedError& error) {
            return error.localizedDescription();
        }
        return QStringLiteral("(no error)");
    }
};

}  // namespace tavrelon::testing
