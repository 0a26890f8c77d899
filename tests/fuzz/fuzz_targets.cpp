#include "fuzz/fuzz_targets.h"

#include <cstdio>
#include <cstdlib>

#include "desktop/documents/html_charset.h"
#include "desktop/documents/plain_text.h"
#include "desktop/documents/rtf_text.h"
#include "learning/clone_error.h"
#include "learning/clone_profile.h"
#include "learning/clone_scrape.h"
#include "learning/learner_state.h"
#include "persistence/app_settings.h"
#include "persistence/history_entry.h"
#include "scenes/scene_config.h"

namespace tavrelon::fuzz {

namespace {

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

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
    readDocument(bytes, persistence::appSettingsFrom);
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

}  // namespace

const std::array<Target, 9> targets{{{"settings", readSettings},
                                     {"scenes", readScenes},
                                     {"history", readHistory},
                                     {"learner_state", readLearnerState},
                                     {"scrape_response", readScrapeResponse},
                                     {"profile", readProfile},
                                     {"rtf", readRtf},
                                     {"plain_text", readPlainText},
                                     {"markup", readMarkup}}};

}  // namespace tavrelon::fuzz
