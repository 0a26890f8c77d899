#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>

#include "input/input_state.h"
#include "platform/screens.h"

namespace tavrelon::ui {

/// The faces of the input HUD. A face's name is the name of its view.
enum class HUDFace { Standard, Listening, VoiceListening, VideoRecording, VideoProcessing, AutoReply, Question };

HUDFace hudFace(const input::InputState& state, std::optional<input::InputTrigger> trigger);
QString hudFaceName(HUDFace face);

/// In points.
inline constexpr QSizeF hudQuestionSize{440, 124};
QSizeF hudContentSize(const input::InputState& state, std::optional<input::InputTrigger> trigger);

/// With room for the name of the service that is waited for.
QSizeF hudWaitingSize(const input::InputState& state, std::optional<input::InputTrigger> trigger);

using HUDLanguage = text::Language;

/// What the standard face says of a state.
struct HUDLook {
    QString label;
    QString symbol;
    QString tint;  ///< the name of a colour of the theme
};
HUDLook hudLook(const input::InputState& state, HUDLanguage language = HUDLanguage::English);

/// The symbol of the status item in a state.
QString statusSymbol(const input::InputState& state);

/// Where the lower left corner of a HUD of this size goes, within the screen. `caret` is on the same axes as the
/// screen, its top() the lower edge. It stands above the caret, or below where there is no room.
QPointF hudOrigin(const input::InputState& state, const std::optional<QRectF>& caret, const platform::Screen& screen,
                  QSizeF size);

}  // namespace tavrelon::ui
