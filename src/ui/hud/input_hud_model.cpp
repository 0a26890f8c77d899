#include "ui/hud/input_hud_model.h"

namespace tavrelon::ui {

void InputHUDModel::show(const input::InputState& state, std::optional<input::InputTrigger> trigger,
                         HUDLanguage language) {
    language_ = language;
    look_ = hudLook(state, language);
    waiting_.clear();
    isPulsing_ = !state.acceptsNewInput();
    isRotating_ = state == input::InputState::Case::processing;
    const auto earlier = shownFace();
    face_ = hudFace(state, trigger);
    announceSince(earlier);
}

void InputHUDModel::setWaitingFor(const QString& service) {
    waiting_ = (isEnglish() ? QStringLiteral("Still waiting for %1…") : QStringLiteral("仍在等待 %1…")).arg(service);
    Q_EMIT stateChanged();
}

void InputHUDModel::setQuestion(const std::optional<HUDQuestion>& question) {
    const auto earlier = shownFace();
    question_ = question;
    announceSince(earlier);
}

/// The face last: a view that builds a new face reads the rest right away.
void InputHUDModel::announceSince(HUDFace earlier) {
    Q_EMIT stateChanged();
    if (shownFace() != earlier)
        Q_EMIT faceChanged();
}

void InputHUDModel::setTranscript(const QString& transcript) {
    if (transcript == transcript_)
        return;
    transcript_ = transcript;
    Q_EMIT transcriptChanged();
}

void InputHUDModel::setRecogniserLoading(bool isLoading) {
    isRecogniserLoading_ = isLoading;
    Q_EMIT transcriptChanged();
}

QString InputHUDModel::heard() const {
    if (!transcript_.isEmpty() || !isRecogniserLoading_)
        return transcript_;
    return isEnglish() ? QStringLiteral("Loading...") : QStringLiteral("正在加载…");
}

}  // namespace tavrelon::ui
