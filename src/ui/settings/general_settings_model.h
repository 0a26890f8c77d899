#pragma once

#include <functional>

#include "ui/settings/first_steps.h"
#include "ui/settings/taught_model.h"

namespace tavrelon::ui {

/// The page of general settings.
class GeneralSettingsModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QString visionModelPreference READ visionModelPreference WRITE setVisionModelPreference NOTIFY changed)
    Q_PROPERTY(bool isThinkEnabled READ isThinkEnabled WRITE setThinkEnabled NOTIFY changed)
    Q_PROPERTY(bool isLocalLearningEnabled READ isLocalLearningEnabled WRITE setLocalLearningEnabled NOTIFY changed)
    Q_PROPERTY(bool sharesImprovements READ sharesImprovements WRITE setSharesImprovements NOTIFY changed)
    Q_PROPERTY(bool enhancesImagePrompts READ enhancesImagePrompts WRITE setEnhancesImagePrompts NOTIFY changed)
    Q_PROPERTY(bool drawsPictures READ drawsPictures WRITE setDrawsPictures NOTIFY changed)
    Q_PROPERTY(bool keepsClipboard READ keepsClipboard WRITE setKeepsClipboard NOTIFY changed)
    Q_PROPERTY(QString faultySettings READ faultySettings CONSTANT)
    Q_PROPERTY(QStringList learnedPieces READ learnedPieces NOTIFY changed)
    Q_PROPERTY(QString learnedAt READ learnedAt NOTIFY changed)
    Q_PROPERTY(tavrelon::ui::FirstSteps* firstSteps READ firstSteps CONSTANT)
    Q_PROPERTY(bool hasForgotten READ hasForgotten NOTIFY changed)
    Q_PROPERTY(tavrelon::ui::TaughtModel* taught READ taught CONSTANT)

 public:
    /// The services outlive the model. `forgetLearned` empties what was gathered of the user's inputs and learned from
    /// it.
    GeneralSettingsModel(FoundServers::Services services, std::function<void()> forgetLearned);

    /// "speed" or "quality"; whatever else is stored shows as "speed".
    QString visionModelPreference() const;
    void setVisionModelPreference(const QString& preference);

    bool isThinkEnabled() const { return settings().enableNvidiaThink; }
    void setThinkEnabled(bool enabled);
    bool isLocalLearningEnabled() const { return settings().enableLocalLearning; }
    void setLocalLearningEnabled(bool enabled);
    bool sharesImprovements() const { return settings().shareImprovements; }
    void setSharesImprovements(bool shares);
    bool enhancesImagePrompts() const { return settings().enableImagePromptEnhancement; }
    void setEnhancesImagePrompts(bool enhances);
    bool drawsPictures() const { return settings().picturesByRequest; }
    void setDrawsPictures(bool draws);
    bool keepsClipboard() const { return settings().keepClipboard; }
    void setKeepsClipboard(bool keeps);

    /// The keys of settings that could not be read at the start, in one line; empty where there are none.
    QString faultySettings() const { return storage().faultySettings().join(QStringLiteral(", ")); }

    // What a model wrote about the user's way of writing; empty where nothing was learned.
    QStringList learnedPieces() const;  ///< for views, which draw a long text piece by piece
    QString learnedAt() const;
    TaughtModel* taught() { return &taught_; }

    FirstSteps* firstSteps() { return &firstSteps_; }

    Q_INVOKABLE void forget();
    bool hasForgotten() const { return hasForgotten_; }  ///< since the page was opened

 private:
    FirstSteps firstSteps_;
    std::function<void()> forgetLearned_;
    bool hasForgotten_ = false;
    TaughtModel taught_{storage(), {persistence::Taught::AdaptivePrompt}};
};

}  // namespace tavrelon::ui
