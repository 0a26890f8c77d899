#pragma once

#include <QString>
#include <QUuid>
#include <optional>

#include "capture/captured_context.h"
#include "input/input_state.h"
#include "input/request_text.h"

namespace tavrelon::input {

/// Whether a spoken text already stands in the field.
enum class TranscriptInserted { No, Yes };

/// The values of one run of the text request pipeline.
struct TextRequest {
    QUuid id;
    std::optional<InputTrigger> trigger;
    QString inputBuffer;  ///< typed keys, prompt box text or transcript
    TranscriptInserted transcriptInserted = TranscriptInserted::No;
    std::optional<capture::AccessibilityTextSnapshot> initial;  ///< the field when the input began
    std::optional<capture::AccessibilityTextSnapshot> current;  ///< the field now
    bool imeActive = false;
    std::optional<QString> clipboardSelection;
    QString requestText;  ///< the input before the capture; also gives the fall-back delete count
    capture::CapturedContext context;
    std::optional<QString> normalizedSelection;  ///< the selection finally believed, trimmed
    bool imeMayBeComposing = false;
    QString finalText;                       ///< what goes to the model; blank where nothing was found
    std::optional<qint64> finalDeleteCount;  ///< characters to remove from the field
    output::StandingText standing;           ///< these characters

    bool isTyped() const { return trigger == InputTrigger::text; }

    /// Whether the text was never written into the field: that of the prompt box, and one that was only spoken.
    bool isOutsideField() const {
        return trigger == InputTrigger::floatingInput ||
               (trigger == InputTrigger::voice && transcriptInserted == TranscriptInserted::No);
    }

    void settle(RequestText found) {
        standing = {found.deleteCount ? found.text : requestText, found.place};
        finalText = std::move(found.text);
        finalDeleteCount = found.deleteCount;
    }
};

}  // namespace tavrelon::input
