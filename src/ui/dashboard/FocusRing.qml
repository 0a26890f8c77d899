import QtQuick

/// Marks the control that has the keyboard, around `target`, which is the parent unless told.
Rectangle {
    property Item target: parent
    property real corner: Look.fieldCorner
    property bool wanted: true

    visible: wanted && target.activeFocus
    anchors.fill: parent
    anchors.margins: -3
    radius: corner + 3
    color: "transparent"
    border.width: 2
    border.color: Look.accent
    z: 1
}
