#include "desktop/atspi/own_field.h"

#include <QGuiApplication>
#include <QInputMethodEvent>
#include <algorithm>

namespace tavrelon::desktop {

using platform::AXElement;
using platform::AXError;
using text::Utf16Range;

std::optional<OwnField> OwnField::focused() {
    auto* const object =
        qobject_cast<QGuiApplication*>(QCoreApplication::instance()) ? QGuiApplication::focusObject() : nullptr;
    if (!object)
        return std::nullopt;
    const OwnField field(*object);
    return field.isHidden() || field.ask(Qt::ImEnabled).toBool() ? std::optional(field) : std::nullopt;
}

QVariant OwnField::ask(Qt::InputMethodQuery query) const {
    QInputMethodQueryEvent question(query);
    QCoreApplication::sendEvent(object_, &question);
    return question.value(query);
}

bool OwnField::isHidden() const {
    return Qt::InputMethodHints(ask(Qt::ImHints).toInt()).testFlag(Qt::ImhHiddenText);
}

/// On the bus nobody is without a name.
AXElement OwnField::element() const {
    return {AXElement::Kind::Object, 0, {}, QString::number(reinterpret_cast<quintptr>(object_), 16)};
}

atspi::FieldContents OwnField::contents() const {
    const qsizetype caret = ask(Qt::ImCursorPosition).toInt();
    const qsizetype anchor = ask(Qt::ImAnchorPosition).toInt();
    return {.value = ask(Qt::ImSurroundingText).toString(),
            .selection = Utf16Range{std::min(caret, anchor), std::abs(caret - anchor)}};
}

AXError OwnField::replace(Utf16Range range, const QString& expected, QString text) {
    const auto before = contents();
    if (before.value.mid(range.location, range.length) != expected)
        return AXError::Failure;
    if (!Qt::InputMethodHints(ask(Qt::ImHints).toInt()).testFlag(Qt::ImhMultiLine))
        text.replace(u'\n', u' ');
    // A selection goes first, and places count from where the caret is then.
    const bool isSelected = before.selection->length > 0;
    if (isSelected && range != *before.selection)
        return AXError::Failure;
    QInputMethodEvent writing;
    writing.setCommitString(text, isSelected ? 0 : static_cast<int>(range.location - before.selection->location),
                            isSelected ? 0 : static_cast<int>(range.length));
    QCoreApplication::sendEvent(object_, &writing);
    // Of several lines the last is the paragraph with the caret.
    auto wanted = QString(before.value).replace(range.location, range.length, text);
    const auto after = contents().value;
    return after == wanted.sliced(wanted.lastIndexOf(u'\n') + 1) ? AXError::Success : AXError::Failure;
}

AXError OwnField::replaceSelection(const QString& text) {
    const auto now = contents();
    return replace(*now.selection, now.value.mid(now.selection->location, now.selection->length), text);
}

}  // namespace tavrelon::desktop
