import QtQuick

/// The background of a text field.
Rectangle {
    property real cornerRadius: Look.fieldCorner
    property bool isActive: false

    radius: cornerRadius
    color: Look.faded(Qt.color("black"), isActive ? 0.55 : 0.4)
    border.width: 1
    border.color: Look.white(isActive ? 0.38 : 0.28)
}
