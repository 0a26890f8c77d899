#include "fuzz/fuzz_targets.h"

#include "desktop/documents/html_charset.h"
#include "desktop/documents/plain_text.h"
#include "desktop/documents/rtf_text.h"
#include "fuzz/fuzz_targets_desktop.h"
#include "fuzz/require.h"
#include "generation/chat_glm.h"
#include "generation/chat_nvidia.h"
#include "generation/chat_ollama.h"
#include "generation/chat_pollinations.h"
#include "generation/image_tool_call.h"
#include "generation/image_wire.h"
#include "generation/prompt_template.h"
#include "learning/clone_error.h"
#include "learning/clone_profile.h"
#include "learning/clone_scrape.h"
#include "learning/learner_state.h"
#include "persistence/app_settings.h"
#include "persistence/history_entry.h"
#include "scenes/scene_config.h"

namespace tavrelon::fuzz {

namespace {

/// What was read once can be read again after it was stored: an error there is nobody's.
template <typename Read>
void readDocument(const QByteArray& bytes, Read read) {
    QByteArray stored;
    try {
        stored = text::compactJson(toJson(read(text::parseJson(bytes))));
    } catch (const text::JsonError&) {  // a bad document is named as such
        return;
    }
    read(text::parseJson(stored));
}

void readSettings(const QByteArray& bytes) {
    readDocument(bytes, [](const text::Json& json) { return persistence::storedSettingsFrom(json).settings; });
}

void readScenes(const QByteArray& bytes) {
    readDocument(bytes, scenes::sceneListFrom);
}

void readHistory(const QByteArray& bytes) {
    readDocument(bytes, persistence::historyEntriesFrom);
}

void readLearnerState(const QByteArray& bytes) {
    readDocument(bytes, learning::learnerStateFrom);
}

void readScrapeResponse(const QByteArray& bytes) {
    try {
        const auto page = learning::clone_scrape::parseScrapeResponse(bytes);
        for (const auto& found : page.texts)
            require(!found.trimmed().isEmpty(), "a blank text counts as one");
    } catch (const text::JsonError&) {  // a bad answer is named as such
    } catch (const learning::CloneServiceError&) {
    }
}

void readProfile(const QByteArray& bytes) {
    try {
        require(!learning::parseCloneProfile(QString::fromUtf8(bytes)).systemPrompt.isEmpty(), "a profile is empty");
    } catch (const learning::CloneServiceError&) {  // a bad reply is named as such
    }
}

void readRtf(const QByteArray& bytes) {
    constexpr qsizetype enough = 10'000;
    const auto text = desktop::rtfText(bytes, enough);
    require(!text || text->size() <= bytes.size() + enough, "more text than bytes");
}

void readPlainText(const QByteArray& bytes) {
    require(desktop::plainText(bytes).size() <= bytes.size(), "more text than bytes");
}

void readMarkup(const QByteArray& bytes) {
    require(desktop::htmlMarkup(bytes).size() <= 2 * bytes.size() + 2, "more text than bytes");
}

/// A model service's answer gives a value, or an error that the user may read.
template <typename Read>
void readAnswer(const QByteArray& bytes, Read read) {
    try {
        read(platform::HttpResponse{.status = 200, .body = bytes});
    } catch (const text::LocalizedError& error) {
        require(!error.localizedDescription().isEmpty(), "an error says nothing");
        require(error.localizedDescription().size() <= bytes.size() + 100, "an error says too much");
    }
}

template <QString (*read)(const platform::HttpResponse&)>
void readChat(const QByteArray& bytes) {
    readAnswer(bytes, [&bytes](const auto& response) {
        require(read(response).size() <= bytes.size(), "more text than bytes");
    });
}

void readOllama(const QByteArray& bytes) {
    readChat<generation::chat_ollama::readResponse>(bytes);
    readAnswer(bytes, [](const auto& response) {
        require(!generation::chat_ollama::readModelList(response).isEmpty(), "an empty list of models");
    });
}

void readImageAnswer(const QByteArray& bytes) {
    readAnswer(bytes, [&bytes](const auto& response) {
        const auto found = generation::image_wire::readGLMAnswer(response);
        if (const auto* image = std::get_if<QByteArray>(&found))
            require(image->size() < bytes.size(), "more picture than bytes");
        else
            require(std::get<QUrl>(found).isValid(), "an address that is none");
    });
}

void readToolCall(const QByteArray& bytes) {
    const auto prompt = generation::parseImageToolCall(QString::fromUtf8(bytes));
    require(!prompt || !prompt->trimmed().isEmpty(), "a tool is asked for nothing");
}

void readPromptTemplate(const QByteArray& bytes) {
    try {
        const auto object = text::parseJson(bytes);
        if (!object.is_object())
            return;
        generation::isStructuredTemplate(object);
        const auto phrases = generation::flattenPromptTemplate(object);
        require(!phrases || !phrases->trimmed().isEmpty(), "a picture of nothing");
    } catch (const text::JsonError&) {  // a bad document is named as such
    }
}

}  // namespace

const std::array<Target, 21> targets{{{"settings", readSettings},
                                      {"scenes", readScenes},
                                      {"history", readHistory},
                                      {"learner_state", readLearnerState},
                                      {"scrape_response", readScrapeResponse},
                                      {"profile", readProfile},
                                      {"rtf", readRtf},
                                      {"plain_text", readPlainText},
                                      {"markup", readMarkup},
                                      {"chat_gateway", readChat<generation::chat_pollinations::readResponse>},
                                      {"chat_glm", readChat<generation::chat_glm::readResponse>},
                                      {"chat_nvidia", readChat<generation::chat_nvidia::readResponse>},
                                      {"chat_ollama", readOllama},
                                      {"tool_call", readToolCall},
                                      {"image_answer", readImageAnswer},
                                      {"prompt_template", readPromptTemplate},
                                      {"picture", readPicture},
                                      {"accessibility_reply", readAccessibilityReply},
                                      {"window_class", readWindowClass},
                                      {"foreign_text", readForeignText},
                                      {"selection", readSelection}}};

}  // namespace tavrelon::fuzz
