#include "ui/settings/clone_settings_model.h"

#include "learning/clone_error.h"
#include "text/characters.h"
#include "text/pieces.h"
#include "ui/settings/clone_texts.h"
#include "ui/settings/date_text.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;

namespace {

QStringList piecesUnlessEmpty(const QString& whole) {
    const auto pieces = text::piecesOf(whole);
    return whole.isEmpty() ? QStringList() : QStringList(pieces.begin(), pieces.end());
}

}  // namespace

CloneSettingsModel::CloneSettingsModel(async::MainLoop& mainLoop, persistence::StorageManager& storage,
                                       CloneLearner& learner, platform::FilePicker& filePicker)
    : PageModel(storage, cloneTexts), learner_(learner), filePicker_(filePicker), tasks_(mainLoop) {
    connect(&learner, &CloneLearner::changed, this, &CloneSettingsModel::learnerChanged);
    learnerChanged();
}

void CloneSettingsModel::learnerChanged() {
    if (const auto outcome = learner_.takeOutcome()) {
        try {
            if (*outcome)
                std::rethrow_exception(*outcome);
            statusMessage_ = text(u"learned");
        } catch (const std::exception& error) {
            errorMessage_ = text::descriptionOf(error).in(language());
        }
    }
    Q_EMIT changed();
}

void CloneSettingsModel::setProfileURLInput(const QString& typed) {
    if (typed == profileURLInput_)
        return;
    profileURLInput_ = typed;
    Q_EMIT changed();
}

QStringList CloneSettingsModel::systemPromptPieces() const {
    return piecesUnlessEmpty(systemPrompt());
}

QStringList CloneSettingsModel::languageStylePieces() const {
    return piecesUnlessEmpty(languageStyle());
}

QString CloneSettingsModel::updatedAt() const {
    return dateText(settings().cloneLanguageStyleUpdatedAt);
}

void CloneSettingsModel::showError(const QString& message) {
    errorMessage_ = message;
    Q_EMIT changed();
}

void CloneSettingsModel::clearMessages() {
    errorMessage_.reset();
    statusMessage_.reset();
}

void CloneSettingsModel::learnFromLink() {
    if (learner_.activeTarget())
        return;
    const auto link = text::trimmed(profileURLInput_);
    if (link.isEmpty())
        return showError(text(u"invalidLink"));
    clearMessages();
    learner_.learnFromLink(link);
}

void CloneSettingsModel::learnFromFile() {
    if (learner_.activeTarget())
        return;
    if (!selectedFileURL_)
        return showError(text(u"chooseFileFirst"));
    clearMessages();
    learner_.learnFromFile(*selectedFileURL_);
}

void CloneSettingsModel::chooseFile() {
    if (isImportingFile_)
        return;
    isImportingFile_ = true;
    tasks_.spawn(pickFile());
    Q_EMIT changed();
}

async::Task<void> CloneSettingsModel::pickFile() {
    QStringList filters{text(u"documents") + u" (*.txt *.md *.pdf *.rtf *.html *.htm *.json *.csv)"_s,
                        text(u"allFiles") + u" (*)"_s};
    const auto choice = co_await filePicker_.pickFile(text(u"chooseFile"), std::move(filters));
    isImportingFile_ = false;
    clearMessages();
    if (!choice) {
        const bool cancelled = choice.error().code == platform::FilePickerError::Code::Cancelled;
        errorMessage_ = cancelled ? text(u"choiceCancelled") : choice.error().description;
    } else {
        selectedFileURL_ = *choice;
        selectedFileName_ = *choice ? (*choice)->adjusted(QUrl::StripTrailingSlash).fileName() : QString();
        if (!selectedFileURL_)
            errorMessage_ = text(u"chooseFileFirst");
    }
    Q_EMIT changed();
}

void CloneSettingsModel::clear() {
    clearMessages();
    store([](persistence::AppSettings& changed) { forgetTaught(changed, persistence::Taught::CloneProfile); });
}

}  // namespace tavrelon::ui
