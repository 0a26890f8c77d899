import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The head of a turn: its time, and what befell it. Its bubbles follow as rows of their own.
Row {
    id: turn

    property string time
    property var badges: []

    spacing: 8
    Accessible.role: Accessible.StaticText
    Accessible.name: [time].concat(badges.map(badge => badge.text)).join(", ")

    Text {
        anchors.verticalCenter: parent.verticalCenter
        text: turn.time
        color: Look.tertiary
        font { family: Look.fontFamily; pixelSize: Look.smallSize }
    }
    Repeater {
        model: turn.badges

        Rectangle {
            id: badge

            required property var modelData
            readonly property color tint: Theme.tint(modelData.tint)

            width: content.width + 16
            height: 20
            radius: 10
            color: Look.faded(tint, 0.18)
            border.width: 1
            border.color: Look.faded(tint, 0.45)

            Row {
                id: content
                anchors.centerIn: parent
                spacing: 4

                Symbol {
                    anchors.verticalCenter: parent.verticalCenter
                    name: badge.modelData.symbol
                    size: 11
                    color: badge.tint
                }
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    text: badge.modelData.text
                    color: badge.tint
                    font { family: Look.fontFamily; pixelSize: Look.smallSize }
                }
            }
        }
    }
}
