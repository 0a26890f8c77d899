#include "ui/hud/hud_look.h"

#include <algorithm>

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
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
    return {state == Case::error ? widthOfError(state.message.english) : widthOfAState, height};
}

QSizeF hudWaitingSize(const InputState& state, std::optional<InputTrigger> trigger) {
    const auto size = hudContentSize(state, trigger);
    return {std::max(size.width(), widthOfASentence), size.height()};
}

HUDLook hudLook(const InputState& state, HUDLanguage language) {
    const bool isEnglish = language == HUDLanguage::English;
    const auto look = [&](QStringView english, QStringView chinese, QLatin1StringView symbol, QLatin1StringView tint) {
        return HUDLook{(isEnglish ? english : chinese).toString(), symbol, tint};
    };
    switch (state.value) {
        case Case::idle:
            break;
        case Case::listening:
            return look(u"Listening...", u"正在聆听…", "text.cursor"_L1, "blue"_L1);
        case Case::listeningVoice:
            return look(u"Recording...", u"正在录音…", "waveform"_L1, "orange"_L1);
        case Case::recordingVideo:
            return look(u"Capturing...", u"正在录制…", "video.fill"_L1, "red"_L1);
        case Case::processing:
            return look(u"Thinking...", u"正在思考…", "sparkles"_L1, "purple"_L1);
        case Case::completed:
            return look(u"Done", u"完成", "checkmark"_L1, "green"_L1);
        case Case::error:
            return state.message.isEmpty() ? look(u"Error", u"出错了", "exclamationmark.triangle.fill"_L1, "red"_L1)
                                           : look(state.message.english, state.message.chinese,
                                                  "exclamationmark.triangle.fill"_L1, "red"_L1);
    }
    return look(u"Ready", u"就绪", "command"_L1, "grey"_L1);
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
            return hudLook(state, HUDLanguage::English).symbol;
    }
}

QPointF hudOrigin(const InputState& state, const std::optional<QRectF>& caret, const platform::Screen& screen,
                  QSizeF size) {
    const auto& area = screen.visibleFrame;
    auto origin = screen.frame.center() - QPointF(75 * screen.scale, 0);
    if (caret) {
        const double offset = (state == Case::listening ? 28 : 20) * screen.scale;
        origin = {caret->x() + 10 * screen.scale, caret->top() + offset};
        if (origin.y() + size.height() > area.bottom())
            origin.setY(caret->top() - offset / 2 - size.height());
    }
    return {std::max(area.left(), std::min(origin.x(), area.right() - size.width())),
            std::max(area.top(), std::min(origin.y(), area.bottom() - size.height()))};
}

}  // namespace tavrelon::ui
