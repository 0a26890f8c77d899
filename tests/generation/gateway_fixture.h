#pragma once

#include <gtest/gtest.h>

#include "generation/pollinations_service.h"
#include "support/fake_http_session.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/run_task.h"
#include "text/json.h"

namespace tavrelon::testing {

/// A gateway with keys for every service, before a scripted network.
class GatewayFixture : public ::testing::Test {
 public:
    GatewayFixture() { service.fallBackToOtherServices = true; }

    VirtualMainLoop loop;
    FakeHttpSession http{loop};
    RecordingLog log;
    generation::PollinationsService service{loop, http, log, endpoints(), keys()};

    static generation::ServiceEndpoints endpoints() {
        return {.pollinationsBaseURL = QStringLiteral("https://pollinations.test"),
                .glmBaseURL = QStringLiteral("https://glm.test/v4"),
                .nvidiaChatCompletionsURL = QStringLiteral("https://nvidia.test/v1/chat/completions"),
                .ollamaCloudTagsURL = QStringLiteral("https://ollama.test/api/tags"),
                .ollamaCloudChatURL = QStringLiteral("https://ollama.test/api/chat"),
                .ollamaLocalChatURL = QStringLiteral("http://localhost:11434/api/chat"),
                .cloneApiBaseURL = {},
                .builtInPollinationsKey = {},
                .builtInGLMKey = {},
                .builtInNvidiaApiKey = QStringLiteral(" nvapi-built-in ")};
    }
    static generation::ProviderKeys keys() {
        return {.defaultPollinationsApiKey = QStringLiteral(" sk_default\n"),
                .glmApiKey = QStringLiteral("glm.key"),
                .nvidiaApiKey = {}};
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
        return runTask(loop, service.generateText(QStringLiteral("S"), QStringLiteral("U"), image, 2000, 0.7F));
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
