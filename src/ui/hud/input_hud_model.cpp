#include "ui/hud/input_hud_model.h"

namespace tavrelon::ui {

void InputHUDModel::show(const input::InputState& state, std::optional<input::InputTrigger> trigger) {
    look_ = hudLook(state);
    isPulsing_ = !state.acceptsNewInput();
    isRotating_ = state == input::InputState::Case::processing;
    // The face last: a view that builds a new face reads the rest right away.
    const auto face = hudFace(state, trigger);
    const bool isOther = std::exchange(face_, face) != face;
    Q_EMIT stateChanged();
    if (isOther)
        Q_EMIT faceChanged();
}

void InputHUDModel::setTranscript(const QString& transcript) {
    if (transcript == transcript_)
        return;
    transcript_ = transcript;
    Q_EMIT transcriptChanged();
}

}  // namespace tavrelon::ui
