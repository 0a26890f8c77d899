#pragma once

#include <memory>

#include "platform/accessibility.h"

namespace tavrelon::testing {

/// A field that has the focus, and the accessibility that is to see it: the fake's or an editor's on this desktop.
class ContractField {
 public:
    virtual ~ContractField() = default;

    virtual platform::Accessibility& accessibility() = 0;
    virtual qint64 process() const = 0;

    /// Gives the field a text and a selection within it, at character boundaries.
    virtual void arrange(const QString& value, text::Utf16Range selection) = 0;

    /// Ends the turn of the main loop.
    virtual void nextTurn() = 0;
};

std::unique_ptr<ContractField> makeFakeField();

/// With the editor of that name.
std::unique_ptr<ContractField> makeEditorField(const QString& editor);

}  // namespace tavrelon::testing
