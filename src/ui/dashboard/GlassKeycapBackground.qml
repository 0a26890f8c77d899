import QtQuick

/// A key cap, with a lower edge as keys have it; it glows while it waits for keys.
Rectangle {
    id: keycap

    property bool isActive: false
    property bool isHovered: false

    radius: 8
    color: isActive ? Look.faded(Look.accent, 0.35) : Look.faded(Qt.color("black"), 0.45)
    Rectangle {
        anchors { fill: parent; bottomMargin: 2 }
        radius: parent.radius
        border.width: 1
        border.color: parent.isActive ? Look.accent : Look.white(0.32)
        gradient: Gradient {
            GradientStop { position: 0; color: keycap.isActive ? "#1f4f4a" : keycap.isHovered ? "#434e67" : "#384258" }
            GradientStop { position: 1; color: keycap.isActive ? "#173c3c" : keycap.isHovered ? "#303a52" : "#283146" }
        }
    }
}
