import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// A few words and a link that opens in the browser.
Row {
    id: line

    property string text
    property string link

    signal opened

    spacing: 6

    Text {
        text: line.text
        color: Look.secondary
        font { family: Look.fontFamily; pixelSize: Look.smallSize }
    }
    PressArea {
        id: anchor
        width: address.width
        height: address.height
        corner: 4
        name: line.text + " " + line.link
        Accessible.role: Accessible.Link
        onTriggered: line.opened()

        Text {
            id: address
            text: line.link
            color: anchor.hovered ? Qt.lighter(Look.cyan, 1.2) : Look.cyan
            font { family: Look.fontFamily; pixelSize: Look.smallSize; underline: anchor.hovered || anchor.activeFocus }
        }
    }
}
