import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A symbol on a tinted tile, as cards have it at their head.
Rectangle {
    property alias name: symbol.name
    property color tint: Look.accent

    width: 36
    height: 36
    radius: 10
    color: Look.faded(tint, 0.16)
    border.width: 1
    border.color: Look.faded(tint, 0.3)

    Symbol {
        id: symbol
        anchors.centerIn: parent
        size: 18
        color: parent.tint
    }
}
