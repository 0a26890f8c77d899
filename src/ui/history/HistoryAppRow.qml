import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// An application in the list of the history.
PressArea {
    id: row

    required property string appId
    required property string displayName
    required property string count
    required property string latestTime
    required property string preview
    property bool isSelected: false

    readonly property real padding: 12

    height: texts.height + 20
    corner: 11
    name: displayName + ", " + count + ", " + latestTime
    Accessible.role: Accessible.ListItem
    Accessible.description: preview
    Accessible.selectable: true
    Accessible.selected: isSelected

    Rectangle {
        anchors.fill: parent
        radius: row.corner
        color: row.isSelected ? Look.faded(Look.accent, 0.16) : Look.white(row.pressed ? 0.12 : row.hovered ? 0.08 : 0)
        border.width: row.isSelected ? 1 : 0
        border.color: Look.faded(Look.accent, 0.45)
    }
    Column {
        id: texts
        anchors { left: parent.left; right: parent.right; margins: row.padding; verticalCenter: parent.verticalCenter }
        spacing: 3

        Item {
            width: parent.width
            height: title.height

            Text {
                id: title
                anchors { left: parent.left; right: total.left; rightMargin: 8 }
                text: row.displayName
                textFormat: Text.PlainText
                elide: Text.ElideRight
                maximumLineCount: 1
                color: Look.primary
                font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
            }
            Text {
                id: total
                anchors { right: parent.right; baseline: title.baseline }
                text: row.count
                color: row.isSelected ? Look.accent : Look.secondary
                font { family: Look.fontFamily; pixelSize: Look.smallSize }
            }
        }
        Text {
            width: parent.width
            text: row.preview
            textFormat: Text.PlainText
            elide: Text.ElideRight
            wrapMode: Text.Wrap
            maximumLineCount: 1
            color: Look.secondary
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
        }
        Text {
            width: parent.width
            text: row.latestTime
            elide: Text.ElideRight
            color: Look.tertiary
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
        }
    }
}
