import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A question, what it is about, and the keys that answer it.
Item {
    id: face

    required property QtObject hud
    readonly property rect maskRect: glass.maskRect
    readonly property real maskRadius: glass.radius

    anchors.fill: parent

    Glass {
        id: glass
        outline: Theme.faded(Theme.orange, 0.5)
    }

    Column {
        anchors { left: parent.left; leftMargin: 22; right: parent.right; rightMargin: 22; verticalCenter: parent.verticalCenter }
        spacing: 5

        Text {
            width: parent.width
            text: face.hud.questionTitle
            textFormat: Text.PlainText
            color: Theme.primary
            wrapMode: Text.Wrap  // a host is never cut
            font.pixelSize: 13
            font.weight: Font.DemiBold
        }
        Text {
            width: parent.width
            text: face.hud.questionDetail
            textFormat: Text.PlainText
            color: Theme.secondary
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            font.pixelSize: 11
        }
        Text {
            width: parent.width
            text: face.hud.questionHint
            textFormat: Text.PlainText
            color: Theme.orange
            elide: Text.ElideRight
            font.pixelSize: 11
            font.weight: Font.Medium
        }
    }
}
