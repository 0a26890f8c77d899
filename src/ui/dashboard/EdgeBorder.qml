import QtQuick

/// A line along chosen edges of its parent.
Item {
    id: border

    property real thickness: 1
    property int edges: Qt.BottomEdge
    property color color: Look.white(0.12)

    anchors.fill: parent

    Rectangle {
        visible: border.edges & Qt.TopEdge
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: border.thickness
        color: border.color
    }
    Rectangle {
        visible: border.edges & Qt.BottomEdge
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: border.thickness
        color: border.color
    }
    Rectangle {
        visible: border.edges & Qt.LeftEdge
        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
        width: border.thickness
        color: border.color
    }
    Rectangle {
        visible: border.edges & Qt.RightEdge
        anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
        width: border.thickness
        color: border.color
    }
}
