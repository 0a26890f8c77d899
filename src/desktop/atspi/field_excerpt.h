#pragma once

#include "desktop/atspi/atspi_protocol.h"
#include "text/characters.h"

namespace tavrelon::desktop::atspi {

/// Which part of a long text is told as the field's value. Main thread.
///
/// What the user asks is found by comparing a field's value before and after it was typed, and only values of up to
/// 20 000 characters are compared whole. An excerpt around the caret moves with the caret, so what stands at its edges
/// would pass for typed, and would be deleted. This one keeps its distance from both ends of the text: what is typed
/// within it makes it longer by just that.
class FieldExcerpt {
 public:
    /// The part of `text` to tell, in UTF-16 units: all of a short text, otherwise some 6000 units to each side of the
    /// selection, or what it was the last time if that still holds the end of the selection.
    text::Utf16Range of(const ObjectReference& field, const QString& text, text::Utf16Range selection);

    /// Lets the next call choose anew.
    void forget() { field_ = {}; }

 private:
    bool keeps(const QString& text, qint64 caret) const;

    ObjectReference field_;
    qint64 before_ = 0;  // what is left out, in UTF-16 units
    qint64 after_ = 0;
};

}  // namespace tavrelon::desktop::atspi
