#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "scenes/decision_object.h"

namespace tavrelon::generation {

/// An answer: a text or a picture, never both, and the decision that goes with it.
struct GenerationResult {
    std::optional<QString> text;
    std::optional<QByteArray> imageData;
    std::optional<scenes::DecisionObject> decisionObject;
};

}  // namespace tavrelon::generation
