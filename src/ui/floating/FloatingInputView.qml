import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The prompt box: one field and a hint.
Item {
    id: view

    required property QtObject model
    readonly property rect maskRect: glass.maskRect
    readonly property real maskRadius: glass.radius

    function focusField() {
        field.forceActiveFocus();
    }

    Component.onCompleted: Qt.callLater(focusField)
    Connections {
        target: view.model
        function onFocusTokenChanged() { Qt.callLater(view.focusField); }
        function onTextChanged() {
            if (field.text !== view.model.text)
                field.text = view.model.text;
        }
    }

    Glass {
        id: glass
        radius: 16
        margin: 0
        shadowRadius: 0
        outline: Theme.faded(Qt.color("white"), 0.2)
    }

    DragHandler {
        target: null
        onActiveChanged: if (active) view.Window.window.startSystemMove()
    }

    Rectangle {
        id: frame
        anchors { left: parent.left; right: parent.right; top: parent.top; leftMargin: 14; rightMargin: 14; topMargin: 10 }
        height: 37
        radius: 12
        color: Theme.faded(Qt.color("white"), 0.12)

        Text {
            anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
            verticalAlignment: Text.AlignVCenter
            visible: field.length === 0 && field.preeditText.length === 0
            text: view.model.isEnglish ? "Type a prompt..." : "输入提示内容..."
            color: Theme.placeholder
            font: field.font
        }
        TextInput {
            id: field
            anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
            verticalAlignment: TextInput.AlignVCenter
            clip: true
            maximumLength: 0x7fffffff  // a long text is pasted whole
            color: Theme.primary
            selectionColor: Theme.blue
            selectedTextColor: "white"
            selectByMouse: true
            font.pixelSize: 14
            font.weight: Font.Medium
            onTextChanged: view.model.text = text
            Keys.onReturnPressed: view.model.submit()
            Keys.onEnterPressed: view.model.submit()
            Keys.onEscapePressed: view.model.cancel()
            Accessible.name: view.model.isEnglish ? "Prompt" : "提示"
        }
    }

    Text {
        anchors { left: frame.left; leftMargin: 12; top: frame.bottom; topMargin: 5 }
        text: view.model.isEnglish ? "Enter to send, Esc to cancel" : "回车发送，Esc 取消"
        color: Theme.secondary
        font.pixelSize: 11
    }
}
