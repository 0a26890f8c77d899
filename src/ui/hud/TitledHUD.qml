import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A badge with a title and a subtitle beside it.
Item {
    id: face

    property color tint
    property string title
    property string subtitle
    default property alias badge: place.data
    readonly property alias beat: beat
    readonly property rect maskRect: glass.maskRect
    readonly property real maskRadius: glass.radius

    anchors.fill: parent

    Beat { id: beat }
    Glass {
        id: glass
        outline: Theme.faded(face.tint, 0.35)
    }

    Item {
        id: place
        anchors { left: parent.left; leftMargin: glass.margin + 12; verticalCenter: parent.verticalCenter }
        width: 34
        height: 34
    }

    Column {
        anchors { left: place.right; leftMargin: 14; right: parent.right; rightMargin: glass.margin + 12; verticalCenter: parent.verticalCenter }
        spacing: 3

        Text {
            text: face.title
            color: Theme.primary
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
        Text {
            text: face.subtitle
            color: Theme.secondary
            font.pixelSize: 10
        }
    }
}
