#pragma once

#include "platform/file_picker.h"
#include "ui/dashboard/page_model.h"
#include "ui/settings/clone_learner.h"
#include "ui/settings/taught_model.h"

namespace tavrelon::ui {

/// The clone page: what to learn from, how the learning goes, and what was learned. A failure becomes a message, in the
/// language of that moment. Main thread.
class CloneSettingsModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QString profileURLInput READ profileURLInput WRITE setProfileURLInput NOTIFY changed)
    Q_PROPERTY(bool isImportingFile READ isImportingFile NOTIFY changed)
    Q_PROPERTY(QString selectedFileName READ selectedFileName NOTIFY changed)
    Q_PROPERTY(bool isLearningFromLink READ isLearningFromLink NOTIFY changed)
    Q_PROPERTY(bool isLearningFromFile READ isLearningFromFile NOTIFY changed)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY changed)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY changed)
    Q_PROPERTY(QStringList systemPromptPieces READ systemPromptPieces NOTIFY changed)
    Q_PROPERTY(QStringList languageStylePieces READ languageStylePieces NOTIFY changed)
    Q_PROPERTY(QString updatedAt READ updatedAt NOTIFY changed)
    Q_PROPERTY(bool canClear READ canClear NOTIFY changed)
    Q_PROPERTY(tavrelon::ui::TaughtModel* taught READ taught CONSTANT)

 public:
    /// The referents outlive this object. `learner` may be at work already, from an earlier showing of the page.
    CloneSettingsModel(async::MainLoop& mainLoop, persistence::StorageManager& storage, CloneLearner& learner,
                       platform::FilePicker& filePicker);

    const QString& profileURLInput() const { return profileURLInput_; }
    void setProfileURLInput(const QString& typed);

    bool isImportingFile() const { return isImportingFile_; }
    const QString& selectedFileName() const { return selectedFileName_; }  ///< empty while no file is chosen

    bool isLearningFromLink() const { return learner_.activeTarget() == CloneLearningTarget::Link; }
    bool isLearningFromFile() const { return learner_.activeTarget() == CloneLearningTarget::File; }

    // Empty when there is nothing to say.
    QString statusMessage() const { return statusMessage_.value_or(QString()); }
    QString errorMessage() const { return errorMessage_.value_or(QString()); }

    // What was learned; empty where nothing was.
    QString systemPrompt() const { return settings().cloneSystemPrompt; }
    QString languageStyle() const { return settings().cloneLanguageStyle; }
    QStringList systemPromptPieces() const;  ///< for views, which draw a long text piece by piece
    QStringList languageStylePieces() const;
    QString updatedAt() const;
    bool canClear() const { return !systemPrompt().isEmpty() || !languageStyle().isEmpty(); }

    TaughtModel* taught() { return &taught_; }

    // The page's buttons. One learning at a time: a press that would start another does nothing.
    Q_INVOKABLE void learnFromLink();
    Q_INVOKABLE void chooseFile();
    Q_INVOKABLE void learnFromFile();
    Q_INVOKABLE void clear();

 private:
    void showError(const QString& message);
    void clearMessages();
    void learnerChanged();
    async::Task<void> pickFile();

    CloneLearner& learner_;
    platform::FilePicker& filePicker_;
    TaughtModel taught_{storage(), {persistence::Taught::CloneProfile}};
    QString profileURLInput_;
    bool isImportingFile_ = false;
    std::optional<QUrl> selectedFileURL_;
    QString selectedFileName_;
    std::optional<QString> statusMessage_;
    std::optional<QString> errorMessage_;
    async::TaskScope tasks_;
};

}  // namespace tavrelon::ui
