import QtQuick

/// A labelled text field that hides what is typed.
LabeledField {
    isSecure: true
}
