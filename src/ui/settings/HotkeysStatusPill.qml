import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The state of the master switch in a word.
Rectangle {
    id: pill

    property bool isEnabled: true
    property var texts
    readonly property color tint: isEnabled ? Look.accent : Theme.disabled

    implicitWidth: row.width + 20
    implicitHeight: 24
    radius: 12
    color: Look.faded(tint, 0.14)
    border.width: 1
    border.color: Look.faded(tint, 0.4)
    Accessible.role: Accessible.StaticText
    Accessible.name: label.text

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 6
        Disc {
            anchors.verticalCenter: parent.verticalCenter
            diameter: 6
            color: pill.tint
        }
        Text {
            id: label
            text: pill.isEnabled ? pill.texts.enabled : pill.texts.disabled
            color: pill.tint
            font { family: Look.fontFamily; pixelSize: Look.smallSize; weight: Font.DemiBold }
        }
    }
}
