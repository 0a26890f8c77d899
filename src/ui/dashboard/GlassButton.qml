import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A button with a text and perhaps a symbol.
PressArea {
    id: button

    property string text
    property string icon
    property color tint: Look.white(1)
    property bool isProminent: false   ///< the action that the place is for
    readonly property color ink: isProminent ? Look.accentInk : Look.faded(tint, 0.96)

    name: text
    implicitWidth: row.implicitWidth + 28
    implicitHeight: Look.fieldHeight

    Rectangle {
        anchors.fill: parent
        radius: button.corner
        color: button.isProminent ? Qt.lighter(Look.accent, button.pressed ? 0.85 : button.hovered ? 1.1 : 1)
                                  : Look.faded(button.tint, button.pressed ? 0.22 : button.hovered ? 0.17 : 0.1)
        border.width: button.isProminent ? 0 : 1
        border.color: Look.faded(button.tint, 0.28)
    }
    Row {
        id: row
        anchors.centerIn: parent
        spacing: 7

        Symbol {
            visible: button.icon
            anchors.verticalCenter: parent.verticalCenter
            name: button.icon
            color: button.ink
            size: 15
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            color: button.ink
            font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
        }
    }
}
