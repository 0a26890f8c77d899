import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The button that starts a learning, and shows that one is under way.
PressArea {
    id: button

    property string text
    property string busyText
    property string icon
    property bool isBusy: false

    name: isBusy ? busyText : text
    implicitWidth: row.width + 28
    implicitHeight: Look.fieldHeight

    Rectangle {
        anchors.fill: parent
        radius: button.corner
        color: Qt.lighter(Look.accent, button.pressed ? 0.85 : button.hovered ? 1.1 : 1)
    }
    Row {
        id: row
        anchors.centerIn: parent
        spacing: 7

        Symbol {
            visible: button.icon && !button.isBusy
            anchors.verticalCenter: parent.verticalCenter
            name: button.icon
            color: Look.accentInk
            size: 15
        }
        Spinner {
            visible: button.isBusy
            anchors.verticalCenter: parent.verticalCenter
            color: Look.accentInk
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: button.name
            color: Look.accentInk
            font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
        }
    }
}
