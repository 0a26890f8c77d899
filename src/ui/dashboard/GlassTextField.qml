import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A line to type in. The owner writes `text` from its model; `edited` tells each change by the user, `committed` the
/// end of an edit.
FocusScope {
    id: field

    property string text
    property string placeholder
    property string name               ///< for assistive technology
    property string toolTip
    property string icon
    property bool isSecure: false
    property int alignment: TextInput.AlignLeft
    readonly property alias typed: input.text

    signal edited(string text)
    signal committed(string text)

    /// Shows what the model says again, whatever was typed.
    function revert() {
        input.text = text;
    }

    implicitWidth: 200
    implicitHeight: Look.fieldHeight
    activeFocusOnTab: true
    onTextChanged: if (input.text !== text) input.text = text

    GlassFieldBackground { anchors.fill: parent; isActive: input.activeFocus }
    FocusRing { target: input }
    Symbol {
        id: symbol
        visible: field.icon
        anchors { left: parent.left; leftMargin: 10; verticalCenter: parent.verticalCenter }
        name: field.icon
        size: 15
        color: Look.tertiary
    }
    Text {
        anchors.fill: input
        verticalAlignment: Text.AlignVCenter
        horizontalAlignment: field.alignment
        visible: input.length === 0 && input.preeditText.length === 0
        text: field.placeholder
        elide: Text.ElideRight
        color: Look.tertiary
        font: input.font
    }
    TextInput {
        id: input
        anchors { fill: parent; leftMargin: field.icon ? 34 : 11; rightMargin: 11 }
        focus: true
        activeFocusOnTab: false        // the scope around it is the stop
        verticalAlignment: TextInput.AlignVCenter
        horizontalAlignment: field.alignment
        clip: true
        text: field.text
        echoMode: field.isSecure ? TextInput.Password : TextInput.Normal
        passwordCharacter: "•"
        maximumLength: 32767           // laying out a longer line would hold up the window
        color: Look.primary
        selectionColor: Look.faded(Look.blue, 0.7)
        selectedTextColor: "white"
        selectByMouse: true
        font { family: Look.fontFamily; pixelSize: Look.bodySize }
        onTextEdited: field.edited(text)
        onEditingFinished: field.committed(text)
        Accessible.role: Accessible.EditableText
        Accessible.name: field.name
        Accessible.description: field.toolTip
        Accessible.passwordEdit: field.isSecure
    }
    HoverHandler { id: hover; cursorShape: Qt.IBeamCursor }
    ToolTip { text: field.toolTip; target: field; wanted: hover.hovered && !input.activeFocus }
}
