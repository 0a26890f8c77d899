import QtQuick

/// A card that is as high as what stands in it, one below the other.
Item {
    id: card

    property real cornerRadius: Look.corner
    property bool isHighlighted: false
    property real padding: Look.padding
    property alias spacing: column.spacing
    readonly property real contentWidth: column.width
    default property alias content: column.data

    implicitHeight: column.implicitHeight + 2 * padding

    GlassCardBackground {
        anchors.fill: parent
        cornerRadius: card.cornerRadius
        isHighlighted: card.isHighlighted
    }
    Column {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: card.padding }
        spacing: 10
    }
}
