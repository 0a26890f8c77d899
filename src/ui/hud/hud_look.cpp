#include "ui/hud/hud_look.h"

#include <algorithm>

namespace tavrelon::ui {

using input::InputState;
using input::InputTrigger;
using Case = InputState::Case;

namespace {

constexpr double height = 60;
constexpr double widthOfAState = 200;
constexpr double widthOfASentence = 320;
constexpr double widthOfTwoLines = 420;

double widthOfError(const QString& message) {
    constexpr qsizetype oneLine = 40;
    if (message.isEmpty())
        return widthOfAState;
    return message.size() <= oneLine ? widthOfASentence : widthOfTwoLines;
}

}  // namespace

HUDFace hudFace(const InputState& state, std::optional<InputTrigger> trigger) {
    switch (state.value) {
        case Case::listening:
            return HUDFace::Listening;
        case Case::listeningVoice:
            return HUDFace::VoiceListening;
        case Case::recordingVideo:
            return HUDFace::VideoRecording;
        case Case::processing:
            if (trigger == InputTrigger::autoReply)
                return HUDFace::AutoReply;
            return trigger == InputTrigger::video ? HUDFace::VideoProcessing : HUDFace::Standard;
        default:
            return HUDFace::Standard;
    }
}

QString hudFaceName(HUDFace face) {
    switch (face) {
        case HUDFace::Listening:
            return QStringLiteral("GlassListeningHUD");
        case HUDFace::VoiceListening:
            return QStringLiteral("VoiceListeningHUD");
        case HUDFace::VideoRecording:
            return QStringLiteral("VideoRecordingHUD");
        case HUDFace::VideoProcessing:
            return QStringLiteral("VideoProcessingHUD");
        case HUDFace::AutoReply:
            return QStringLiteral("AutoReplyHUD");
        case HUDFace::Question:
            return QStringLiteral("QuestionHUD");
        case HUDFace::Standard:
            break;
    }
    return QStringLiteral("StandardHUD");
}

QSizeF hudContentSize(const InputState& state, std::optional<InputTrigger> trigger) {
    switch (hudFace(state, trigger)) {
        case HUDFace::Listening:
            return {60, 60};
        case HUDFace::VoiceListening:
            return {210, 70};
        case HUDFace::VideoRecording:
        case HUDFace::VideoProcessing:
        case HUDFace::AutoReply:
            return {220, 70};
        case HUDFace::Question:
            return hudQuestionSize;
        case HUDFace::Standard:
            break;
    }
    return {state == Case::error ? widthOfError(state.message) : widthOfAState, height};
}

QSizeF hudWaitingSize(const InputState& state, std::optional<InputTrigger> trigger) {
    const auto size = hudContentSize(state, trigger);
    return {std::max(size.width(), widthOfASentence), size.height()};
}

HUDLook hudLook(const InputState& state) {
    switch (state.value) {
        case Case::idle:
            break;
        case Case::listening:
            return {QStringLiteral("Listening..."), QStringLiteral("text.cursor"), QStringLiteral("blue")};
        case Case::listeningVoice:
            return {QStringLiteral("Recording..."), QStringLiteral("waveform"), QStringLiteral("orange")};
        case Case::recordingVideo:
            return {QStringLiteral("Capturing..."), QStringLiteral("video.fill"), QStringLiteral("red")};
        case Case::processing:
            return {QStringLiteral("Thinking..."), QStringLiteral("sparkles"), QStringLiteral("purple")};
        case Case::completed:
            return {QStringLiteral("Done"), QStringLiteral("checkmark"), QStringLiteral("green")};
        case Case::error:
            return {state.message.isEmpty() ? QStringLiteral("Error") : state.message,
                    QStringLiteral("exclamationmark.triangle.fill"), QStringLiteral("red")};
    }
    return {QStringLiteral("Ready"), QStringLiteral("command"), QStringLiteral("grey")};
}

QString statusSymbol(const InputState& state) {
    switch (state.value) {
        case Case::idle:
            return QStringLiteral("key.fill");
        case Case::processing:
            return QStringLiteral("brain.head.profile");
        case Case::completed:
            return QStringLiteral("checkmark.circle.fill");
        default:
            return hudLook(state).symbol;
    }
}

QPointF hudOrigin(const InputState& state, const std::optional<QRectF>& caret,
                  const std::optional<platform::Screen>& mainScreen) {
    if (!mainScreen)
        return caret ? QPointF(100, 100) : QPointF(0, 0);
    const auto& frame = mainScreen->frame;
    if (!caret)
        return {frame.center().x() - 75, frame.center().y()};
    const double offset = state == Case::listening ? 28 : 20;
    return {caret->x() + 10, offset + (frame.height() - caret->y() - caret->height())};
}

}  // namespace tavrelon::ui
