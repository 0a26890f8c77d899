import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// A symbol and a line where there is nothing to show.
Column {
    id: empty

    property string text

    spacing: 12

    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        name: "clock.arrow.circlepath"
        size: 40
        color: Look.white(0.28)
    }
    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        text: empty.text
        color: Look.tertiary
        font { family: Look.fontFamily; pixelSize: Look.bodySize }
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
