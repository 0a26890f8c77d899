#pragma once

#include <QObject>

#include "ui/hud/hud_look.h"

namespace tavrelon::ui {

/// A question that the user answers by hotkeys, since the HUD takes neither keys nor clicks.
struct HUDQuestion {
    QString title;
    QString detail;
    QString hint;  ///< which key means what
};

/// What the input HUD shows, for its view to observe.
class InputHUDModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString face READ face NOTIFY faceChanged)
    Q_PROPERTY(bool isEnglish READ isEnglish NOTIFY stateChanged)
    Q_PROPERTY(QString label READ label NOTIFY stateChanged)
    Q_PROPERTY(QString symbol READ symbol NOTIFY stateChanged)
    Q_PROPERTY(QString tint READ tint NOTIFY stateChanged)
    Q_PROPERTY(QString waiting READ waiting NOTIFY stateChanged)
    Q_PROPERTY(bool isPulsing READ isPulsing NOTIFY stateChanged)
    Q_PROPERTY(bool isRotating READ isRotating NOTIFY stateChanged)
    Q_PROPERTY(QString questionTitle READ questionTitle NOTIFY stateChanged)
    Q_PROPERTY(QString questionDetail READ questionDetail NOTIFY stateChanged)
    Q_PROPERTY(QString questionHint READ questionHint NOTIFY stateChanged)
    Q_PROPERTY(QString transcript READ transcript NOTIFY transcriptChanged)
    Q_PROPERTY(QString heard READ heard NOTIFY transcriptChanged)

 public:
    void show(const input::InputState& state, std::optional<input::InputTrigger> trigger,
              HUDLanguage language = HUDLanguage::English);
    void setTranscript(const QString& transcript);
    void setRecogniserLoading(bool isLoading);

    /// Says who keeps the user waiting, until the next `show`.
    void setWaitingFor(const QString& service);

    /// A question stands in place of every face until it is taken away.
    void setQuestion(const std::optional<HUDQuestion>& question);
    bool isAsking() const { return question_.has_value(); }

    QString face() const { return hudFaceName(shownFace()); }
    bool isEnglish() const { return language_ == HUDLanguage::English; }
    QString label() const { return waiting_.isEmpty() ? look_.label : waiting_; }
    QString waiting() const { return waiting_; }  ///< empty until it takes long
    QString symbol() const { return look_.symbol; }
    QString tint() const { return look_.tint; }
    QString questionTitle() const { return question_ ? question_->title : QString(); }
    QString questionDetail() const { return question_ ? question_->detail : QString(); }
    QString questionHint() const { return question_ ? question_->hint : QString(); }
    QString transcript() const { return transcript_; }
    QString heard() const;  ///< the transcript, or why there is none yet

    /// Whether the icon's circle breathes, and whether the icon turns once a second.
    bool isPulsing() const { return isPulsing_; }
    bool isRotating() const { return isRotating_; }

    Q_SIGNAL void faceChanged();
    Q_SIGNAL void stateChanged();
    Q_SIGNAL void transcriptChanged();

 private:
    HUDFace shownFace() const { return question_ ? HUDFace::Question : face_; }
    void announceSince(HUDFace earlier);

    std::optional<HUDQuestion> question_;
    HUDFace face_ = HUDFace::Standard;
    HUDLanguage language_ = HUDLanguage::English;
    HUDLook look_ = hudLook({}, language_);
    QString waiting_;
    QString transcript_;
    bool isRecogniserLoading_ = false;
    bool isPulsing_ = false;
    bool isRotating_ = false;
};

}  // namespace tavrelon::ui
