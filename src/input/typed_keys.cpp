// The private copy of what is typed while a text input is open.
#include "input/input_state_machine.h"

namespace tavrelon::input {

namespace {

/// Where the platform of the stored hotkeys keeps its function keys; never text.
constexpr bool isFunctionKey(char32_t scalar) {
    return scalar >= 0xF700 && scalar <= 0xF8FF;
}

QString textOf(const QString& characters) {
    QString kept;
    for (const char32_t scalar : characters.toUcs4()) {
        const auto category = QChar::category(scalar);
        const bool isControl = category == QChar::Other_Control || category == QChar::Other_Format;
        if (scalar == U'\t' || scalar == U'\n' || (!isFunctionKey(scalar) && !isControl))
            kept += QString::fromUcs4(&scalar, 1);
    }
    return kept;
}

}  // namespace

void InputStateMachine::captureTypedKey(const platform::KeyEvent& event) {
    if (currentState() != InputState::Case::listening ||
        event.modifierFlags.intersects(keys::controlFlag | keys::commandFlag))
        return;
    switch (event.keyCode) {
        case keys::keyReturn:
        case keys::keyKeypadEnter:
            typedInputBuffer_ += u'\n';
            break;
        case keys::keyTab:
            typedInputBuffer_ += u'\t';
            break;
        case keys::keyBackspace:
        case keys::keyForwardDelete:
            typedInputBuffer_ = text::withoutLastCharacter(typedInputBuffer_);
            break;
        default:
            typedInputBuffer_ += textOf(event.characters);
    }
}

}  // namespace tavrelon::input
