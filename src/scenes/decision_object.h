#pragma once

#include <QUuid>

#include "scenes/output_type.h"
#include "scenes/replacement_strategy.h"
#include "scenes/result_content.h"
#include "scenes/safety_flags.h"
#include "scenes/style_parameters.h"

namespace tavrelon::scenes {

/// What a generation decided: the scene, the answer and how it is written back. Identified by `id`; nobody changes one
/// after its making.
struct DecisionObject {
    QUuid id = {};
    QString sceneID = {};
    float sceneConfidence = 0;  ///< 0 to 1
    QString intent = {};
    float intentConfidence = 0;  ///< 0 to 1
    bool needsScreenshot = false;
    OutputType outputType = OutputType::text;
    std::optional<QString> templateID = {};
    StyleParameters style = {};
    ReplacementStrategy replacementStrategy = {};
    SafetyFlags safety = {};
    ResultContent result = {};
    std::optional<QString> fallback = {};

    bool operator==(const DecisionObject&) const = default;
};

text::Json toJson(const DecisionObject& decision);

/// Throws `text::JsonError`. Only "templateID" and "fallback" may be missing.
DecisionObject decisionObjectFrom(const text::Json& json);

}  // namespace tavrelon::scenes
