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

/// What the standard face says of a state.
struct HUDLook {
    QString label;
    QString symbol;
    QString tint;  ///< the name of a colour of the theme
};
HUDLook hudLook(const input::InputState& state);

/// The symbol of the status item in a state.
QString statusSymbol(const input::InputState& state);

/// Where the lower left corner of the HUD goes. `caret` counts from the top left of the desktop. The HUD is not kept
/// within the screen.
QPointF hudOrigin(const input::InputState& state, const std::optional<QRectF>& caret,
                  const std::optional<platform::Screen>& mainScreen);

}  // namespace tavrelon::ui
