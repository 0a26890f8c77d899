#pragma once

#include <QObject>

#include "desktop/atspi/field_reader.h"
#include "platform/accessibility.h"

namespace tavrelon::desktop {

/// The field with the focus in our own windows, asked as an input method would: over the bus the program would wait for
/// itself. Its value is the paragraph with the caret. Main thread.
class OwnField {
 public:
    /// None where nothing that takes text has the focus, or there are no windows.
    static std::optional<OwnField> focused();

    /// Whether it hides what is typed, as do those for the keys of services.
    bool isHidden() const;
    platform::AXElement element() const;
    bool isAt(const platform::AXElement& element) const { return this->element() == element; }

    atspi::FieldContents contents() const;

    /// In one step. `Failure` where `expected` does not stand in that range, or the field makes something else of it.
    platform::AXError replace(text::Utf16Range range, const QString& expected, QString text);
    platform::AXError replaceSelection(const QString& text);

 private:
    explicit OwnField(QObject& object) : object_(&object) {}
    QVariant ask(Qt::InputMethodQuery query) const;

    QObject* object_;
};

}  // namespace tavrelon::desktop
