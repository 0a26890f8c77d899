#pragma once

#include "scenes/raw_values.h"

namespace tavrelon::scenes {

/// The intents by which the history can be filtered. A decision's own intent is free text, not one of these.
enum class IntentType {
    rewrite,
    polish,
    expand,
    continue_,
    summarize,
    translate,
    reply,
    draw,
    image,
    extract,
    code,
    explain
};

/// All cases in order.
template <>
inline constexpr std::array rawValues<IntentType>{
    RawValue{IntentType::rewrite, "rewrite"},     RawValue{IntentType::polish, "polish"},
    RawValue{IntentType::expand, "expand"},       RawValue{IntentType::continue_, "continue"},
    RawValue{IntentType::summarize, "summarize"}, RawValue{IntentType::translate, "translate"},
    RawValue{IntentType::reply, "reply"},         RawValue{IntentType::draw, "draw"},
    RawValue{IntentType::image, "image"},         RawValue{IntentType::extract, "extract"},
    RawValue{IntentType::code, "code"},           RawValue{IntentType::explain, "explain"},
};

/// The label in the history view.
QString displayName(IntentType intent);

}  // namespace tavrelon::scenes
