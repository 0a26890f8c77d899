import QtQuick

/// A number between its label and its unit. `value` is the number as the model writes it; `committed` hands on what was
/// typed at the end of an edit, and the field then shows what the model made of it.
Row {
    id: labeled

    property string label
    property string placeholder
    property string value
    property string suffix
    property string toolTip
    property string name: label
    property real fieldWidth: 70

    signal committed(string text)

    spacing: 7

    Text {
        anchors.verticalCenter: parent.verticalCenter
        text: labeled.label
        color: Look.secondary
        font { family: Look.fontFamily; pixelSize: Look.smallSize }
    }
    GlassTextField {
        width: labeled.fieldWidth
        height: 28
        anchors.verticalCenter: parent.verticalCenter
        alignment: TextInput.AlignRight
        name: labeled.name
        toolTip: labeled.toolTip
        placeholder: labeled.placeholder
        text: labeled.value
        onCommitted: text => {
            if (text !== labeled.value)
                labeled.committed(text);
            revert();
        }
    }
    Text {
        visible: text
        anchors.verticalCenter: parent.verticalCenter
        text: labeled.suffix
        color: Look.secondary
        font { family: Look.fontFamily; pixelSize: Look.smallSize }
    }
}
